// Sorting, out of the way of the options: this unit is compiled with optimisation.
#include "sort_order.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <filesystem>

#include "errors.h"
#include "status_names.h"
#include "visible.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/zrvintl.h"

namespace zrvtool {

namespace {

// Where a character set has its files.
std::filesystem::path directory_of(CS_CONTEXT &context, std::string charset) {
  char path[4096];
  const CS_RETCODE status =
      com_path_charfile(&context, charset.data(), nullptr, nullptr, path, sizeof path);
  if (status != CS_SUCCEED)
    throw StreamError("the home directory cannot be found: " + status_name(status));
  return path;
}

// The names in a directory: its folders, or the sort orders.
std::vector<std::string> names_in(const std::filesystem::path &directory, const char *extension) {
  std::vector<std::string> names;
  std::error_code error;
  for (const auto &entry : std::filesystem::directory_iterator(directory, error))
    if (entry.path().extension() == extension)
      names.push_back(entry.path().stem().string());
  std::sort(names.begin(), names.end());
  return names;
}

} // namespace

// The layers above load an order with a locale. Here a character set stands for itself: it is no more
// than where the order is kept.
SortOrder::SortOrder(const std::string &charset, const std::string &name) {
  CS_CONTEXT context{};
  CsLocCache cache{};
  std::string charset_name = charset, order_name = name;
  cache.charname = charset_name.data();
  cache.sortname = order_name.data();
  cache.locchardesc = &charset_record;
  const CS_RETCODE status = comn__intl_load_sortorder(&context, &identity, &cache, nullptr, 0);
  if (status == CS_SUCCEED) {
    table = cache.locsortorder->char_sort_class;
    return;
  }
  const std::filesystem::path directory = directory_of(context, charset);
  const std::filesystem::path file = directory / (name + ".srt");
  if (status != COM_LOCFILE_ERROR || std::filesystem::exists(file))
    throw StreamError("cannot load " + file.string() + ": " + status_name(status) +
                      " (zrvcomn sort --check tells why)");
  if (!std::filesystem::is_directory(directory))
    throw UsageError("there is no character set " + in_quotes(charset) +
                     suggest(charset, names_in(directory.parent_path(), "")));
  throw UsageError("the character set " + in_quotes(charset) + " has no sort order " +
                   in_quotes(name) + suggest(name, names_in(directory, ".srt")));
}

SortOrder::~SortOrder() {
  if (charset_record.sort_order != nullptr)
    comn__sortorder_drop(charset_record.sort_order);
}

int SortOrder::compare(std::string_view first, std::string_view second) const {
  if (table == nullptr) // by byte
    return first.compare(second);
  auto *const str1 = const_cast<CS_CHAR *>(first.data());
  auto *const str2 = const_cast<CS_CHAR *>(second.data());
  const auto len1 = static_cast<CS_INT>(first.size()), len2 = static_cast<CS_INT>(second.size());
  const CS_INT order = com_ps_dl_sqlhilo(table, str1, len1, str2, len2);
  return order != 0 ? order : com_spec_tord(table, str1, len1, str2, len2);
}

void sort_items(const SortOrder &order, std::vector<SortItem> &items, bool is_reverse,
                bool only_unique) {
  std::stable_sort(items.begin(), items.end(), [&](const SortItem &first, const SortItem &second) {
    return is_reverse ? order.compare(second.key, first.key) < 0
                      : order.compare(first.key, second.key) < 0;
  });
  if (only_unique)
    items.erase(std::unique(items.begin(), items.end(),
                            [&](const SortItem &first, const SortItem &second) {
                              return order.compare(first.key, second.key) == 0;
                            }),
                items.end());
}

} // namespace zrvtool
