// Listings: what the subcommands print that show what there is, as a table of their own, as columns
// with tabs between, or as JSON Lines. The last two have the same fields.
#ifndef ZRVTOOL_LISTING_H
#define ZRVTOOL_LISTING_H

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zrvtool {

// A value as JSON, on one line. JSON is UTF-8: other bytes become the replacement character.
std::string json_text(const nlohmann::ordered_json &value);

struct Listing {
  bool json = false, plain = false;

  // True where the table is not what is printed.
  bool is_for_programs() const { return json || plain; }
  // A line for an object. Plain: a list is joined by commas, an object gives its fields in its place,
  // a field without a value is "-".
  void add(std::string &out, const nlohmann::ordered_json &object) const;
};

// --json and --plain, which exclude one another; `what` is what a line is for, as "set".
struct ListingOptions {
  CLI::Option *json, *plain;
};
ListingOptions add_listing(CLI::App &app, Listing &listing, const std::string &what);

} // namespace zrvtool

#endif
