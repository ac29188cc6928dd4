// The life of date tables: read from a language's common.loc, found again, copied, released.
#include <algorithm>
#include <array>

#include "checks.h"
#include "comerr.h"
#include "date_table.h"
#include "loc_cache.h"
#include "section_files.h"

namespace {

CS_CHAR file_name[] = "common.loc";

// A text of a table. The names have a terminator behind their length, the others have not.
struct Slot {
  CS_BYTE *&text;
  CS_INT &length;
  bool terminated;
};

// Calls `visit` for each text of a table, in the order of the record.
template <class Visit>
void for_each_text(CS_DATEINFO &table, Visit visit) noexcept {
  const auto all = [&](auto &names, auto &lengths) {
    for (size_t i = 0; i < std::size(names); ++i)
      visit(Slot{names[i], lengths[i], true});
  };
  visit(Slot{table.amindict, table.amindict_len, false});
  visit(Slot{table.pmindict, table.pmindict_len, false});
  all(table.months, table.mon_len);
  all(table.shortmonths, table.shrtmon_len);
  all(table.days, table.day_len);
  all(table.shortdays, table.shrtday_len);
  visit(Slot{table.datefmt, table.datefmt_len, false});
  visit(Slot{table.timefmt, table.timefmt_len, false});
  visit(Slot{table.longdtfmt, table.longdtfmt_len, false});
  visit(Slot{table.shrtdtfmt, table.shrtdtfmt_len, false});
  visit(Slot{table.era, table.era_len, false});
  visit(Slot{table.era_t_fmt, table.eratfmt_len, false});
  visit(Slot{table.era_d_fmt, table.eradfmt_len, false});
  visit(Slot{table.era_dt_fmt, table.eradtfmt_len, false});
}

void free_texts(CS_DATEINFO &table) noexcept {
  for_each_text(table, [](Slot slot) { comn_free(slot.text); });
}

CS_BYTE *copy_text(const Slot &slot) noexcept {
  const auto length = static_cast<size_t>(slot.length);
  auto *const copy = static_cast<CS_BYTE *>(comn_malloc(length + slot.terminated));
  if (copy == nullptr)
    return nullptr;
  std::memcpy(copy, slot.text, length);
  if (slot.terminated)
    copy[length] = 0;
  return copy;
}

// Gives a table copies of texts that it has borrowed. Without memory it has no texts at all.
CS_RETCODE own_texts(CS_DATEINFO &table) noexcept {
  bool complete = true;
  for_each_text(table, [&](Slot slot) {
    if (slot.text == nullptr)
      return;
    slot.text = complete ? copy_text(slot) : nullptr;
    complete = complete && slot.text != nullptr;
  });
  if (complete)
    return CS_SUCCEED;
  free_texts(table);
  table = {};
  return CS_MEM_ERROR;
}

// ---- reading ----

template <size_t size>
void borrow(char (&text)[size], CS_BYTE *&name, CS_INT &length) noexcept {
  name = reinterpret_cast<CS_BYTE *>(text);
  length = static_cast<CS_INT>(strnlen(text, size - 1));
}

// What a section says, with its texts where they stand.
void describe(intl_dateinfo &info, CS_DATEINFO &table) noexcept {
  for (size_t i = 0; i < 12; ++i) {
    borrow(info.months[i], table.months[i], table.mon_len[i]);
    borrow(info.shortmonths[i], table.shortmonths[i], table.shrtmon_len[i]);
  }
  // The file lists the days from Monday on, a table from the first day of the week.
  const auto first = static_cast<size_t>(std::clamp(info.firstday, 1, 7) - 1);
  for (size_t i = 0; i < 7; ++i)
    borrow(info.days[(first + i) % 7], table.days[i], table.day_len[i]);
  table.firstday = info.firstday;
  table.is12hour = info.is12hour;
  intl_strlcpy(table.dateorder, info.dateorder, sizeof table.dateorder);
  table.locdateorder_id = comn::date_order_id(table.dateorder);
  table.convertfmt = com__map_dateorder_id_to_fmt(table.locdateorder_id);
  table.bdtconvertfmt = -1;
}

// Makes a table of the section "datetime".
CS_RETCODE read_section(CS_CONTEXT *context, INTL_LOCFILE *file, CS_DATEINFO **tablep) noexcept {
  const CS_RETCODE found = comn::find_section(context, file, "datetime");
  if (found != CS_SUCCEED)
    return found;
  intl_dateinfo info{};
  const int status = intl_datetime(file, &info);
  if (status < 0)
    return comn::reader_result(context, status);
  auto *const table = static_cast<CS_DATEINFO *>(comn_calloc(1, sizeof(CS_DATEINFO)));
  if (table == nullptr)
    return CS_MEM_ERROR;
  describe(info, *table);
  const CS_RETCODE copied = own_texts(*table);
  if (copied != CS_SUCCEED) {
    comn_free(table);
    return copied;
  }
  *tablep = table;
  return CS_SUCCEED;
}

} // namespace

CS_RETCODE comn__read_common(CS_CONTEXT *context, CsLocCache *lcache, CS_CHAR *locfilename,
                             CS_INT filenamelen) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(context->ctxglobals, CS_FAIL);
  COMN_CHECK_PTR(lcache, CS_FAIL);
  COMN_CHECK_PTR(lcache->locchardesc, CS_FAIL);
  COMN_CHECK_PTR(lcache->locmessage, CS_FAIL);
  CsOID *const language = lcache->locmessage->lang_oid;
  CS_DATEINFO *table = comn__scan_cache_dt(context, language);
  if (table == nullptr) {
    INTL_LOCFILE file;
    CS_RETCODE result =
        comn__open_msgfile(context, lcache->langname, lcache->langnamelen, file_name,
                           sizeof file_name - 1, &file, locfilename, filenamelen);
    if (result != CS_SUCCEED)
      return result;
    result = comn::close_behind(context, &file, read_section(context, &file, &table));
    if (result != CS_SUCCEED) {
      comn__free_dtinfo(table);
      return result;
    }
    table->id = language;
    comn::link_date_table(context->ctxglobals, table);
  }
  lcache->locdateinfo = table;
  return CS_SUCCEED;
}

CS_DATEINFO *comn__scan_cache_dt(CS_CONTEXT *context, CsOID *id) noexcept {
  COMN_CHECK_PTR(context, nullptr);
  COMN_CHECK_PTR(context->ctxglobals, nullptr);
  if (id == nullptr) // those of private tables
    return nullptr;
  CS_DATEINFO *table = comn::date_tables(context->ctxglobals);
  while (table != nullptr && table->id != id)
    table = table->next;
  return table;
}

CS_RETCODE comn__copy_dtinfo(CS_DATEINFO *src, CS_DATEINFO *dest) noexcept {
  COMN_CHECK_PTR(src, CS_FAIL);
  COMN_CHECK_PTR(dest, CS_FAIL);
  *dest = *src;
  dest->next = nullptr;
  return own_texts(*dest);
}

CS_BOOL comn__cmp_dtinfo(CS_DATEINFO *dt1, CS_DATEINFO *dt2) noexcept {
  if (dt1 == nullptr || dt2 == nullptr)
    return dt1 == dt2;
  if (dt1->id != nullptr || dt2->id != nullptr)
    return dt1->id == dt2->id;
  struct Text {
    const CS_BYTE *text;
    CS_INT length;
  };
  std::array<Text, 2 + 12 + 12 + 7 + 7 + 8> texts;
  size_t count = 0;
  for_each_text(*dt1, [&](Slot slot) { texts[count++] = {slot.text, slot.length}; });
  bool equal = true;
  count = 0;
  for_each_text(*dt2, [&](Slot slot) {
    const Text &other = texts[count++];
    equal = equal && slot.length == other.length &&
            (slot.length <= 0 ||
             std::memcmp(slot.text, other.text, static_cast<size_t>(slot.length)) == 0);
  });
  return equal && dt1->is12hour == dt2->is12hour && dt1->firstday == dt2->firstday &&
         dt1->secprec == dt2->secprec &&
         std::memcmp(dt1->dateorder, dt2->dateorder, sizeof dt1->dateorder) == 0 &&
         dt1->convertfmt == dt2->convertfmt && dt1->bdtconvertfmt == dt2->bdtconvertfmt &&
         dt1->locdateorder_id == dt2->locdateorder_id;
}

void comn__free_dtinfo(CS_DATEINFO *dtinfo) noexcept {
  if (dtinfo == nullptr)
    return;
  free_texts(*dtinfo);
  comn_free(dtinfo);
}

CS_RETCODE comn_intl_dt_drop(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  while (CS_DATEINFO *const table = comn::date_tables(context->ctxglobals)) {
    context->ctxglobals->cmg_datetime = table->next;
    comn__free_dtinfo(table);
  }
  return COMN_TRACE(CS_SUCCEED);
}
