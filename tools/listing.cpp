// Lines of listings.
#include "listing.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "visible.h"

namespace zrvtool {

namespace {

using Json = nlohmann::ordered_json;

std::string item_text(const Json &value) {
  if (!value.is_string())
    return value.dump();
  std::string text;
  append_visible(text, value.get_ref<const std::string &>());
  return text;
}

void append_field(std::string &line, const Json &value) {
  if (value.is_object()) {
    for (const Json &each : value)
      append_field(line, each);
    return;
  }
  std::string text;
  if (value.is_array())
    for (const Json &each : value)
      text += (text.empty() ? "" : ",") + item_text(each);
  else if (!value.is_null())
    text = item_text(value);
  line += (text.empty() ? "-" : text) + "\t";
}

} // namespace

std::string json_text(const Json &value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void Listing::add(std::string &out, const Json &object) const {
  if (json) {
    out += json_text(object) + "\n";
    return;
  }
  append_field(out, object);
  out.back() = '\n';
}

ListingOptions add_listing(CLI::App &app, Listing &listing, const std::string &what) {
  CLI::Option *const json =
      app.add_flag("--json", listing.json, "Print one JSON object for each " + what);
  CLI::Option *const plain =
      app.add_flag("--plain", listing.plain, "Print columns with tabs between, without a header");
  plain->excludes(json);
  return {json, plain};
}

} // namespace zrvtool
