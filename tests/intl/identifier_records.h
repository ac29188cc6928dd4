// Tables of identifiers: made by hand, without the loader, and loaded from files of the test's own.
#ifndef ZRVTEST_IDENTIFIER_RECORDS_H
#define ZRVTEST_IDENTIFIER_RECORDS_H

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "home_file.h"
#include "zrvcomn/comloc.h"
#include "zrvcomn/comnlib.h"

namespace zrvtest {

using Names = std::vector<std::string>;
using Bytes = std::vector<CS_BYTE>;

inline std::string text_of(const CS_CHAR *text, CS_INT length) {
  return std::string(text != nullptr ? text : "", static_cast<size_t>(length));
}

inline Names names_of(const CsOID &oid) {
  Names names;
  for (const CS_STRING_LIST *name = oid.oidlnames; name != nullptr; name = name->next)
    names.push_back(text_of(name->string, name->len));
  EXPECT_EQ(static_cast<size_t>(oid.oidnumlnames), names.size());
  return names;
}

inline Bytes encoding_of(const CsOID &oid) {
  return Bytes(oid.oidber, oid.oidber + oid.oidberlen);
}

// What a literal of a test can be handed over as.
class Text {
public:
  Text(std::string_view text) : bytes(text) {}
  operator CS_CHAR *() { return bytes.data(); }
  CS_INT length() const { return static_cast<CS_INT>(bytes.size()); }

private:
  std::string bytes;
};

// A table in a context, its records filled in by hand. Nothing of it may be released.
class HandTable {
public:
  HandTable() {
    globals.ctxoids = &table;
    context.ctxglobals = &globals;
  }

  CsOID *add(CS_INT oidclass, Bytes encoding, const Names &names) {
    CsOID **end = &table.ot_oid[oidclass];
    while (*end != nullptr)
      end = &(*end)->oidnext;
    *end = make(std::move(encoding), names);
    return *end;
  }

  // A record that the table does not have.
  CsOID *make(Bytes encoding, const Names &names) {
    CsOID &oid = oids.emplace_back();
    encodings.push_back(std::move(encoding));
    oid.oidber = encodings.back().data();
    oid.oidberlen = static_cast<CS_INT>(encodings.back().size());
    CS_STRING_LIST **end = &oid.oidlnames;
    for (const std::string &name : names) {
      texts.push_back(std::vector<char>(name.begin(), name.end())); // without a terminator
      *end = &elements.emplace_back();
      if (!name.empty())
        (*end)->string = texts.back().data();
      (*end)->len = static_cast<CS_INT>(name.size());
      end = &(*end)->next;
      ++oid.oidnumlnames;
    }
    return &oid;
  }

  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  CS_OID_TABLE table{};

private:
  std::deque<CsOID> oids;
  std::deque<Bytes> encodings;
  std::deque<std::vector<char>> texts;
  std::deque<CS_STRING_LIST> elements;
};

// A home directory whose only file is config/objectid.dat. The environment points at it.
class IdentifierHome : public HomeFile {
public:
  IdentifierHome() : HomeFile("config/objectid.dat") {}
  explicit IdentifierHome(std::string_view text) : IdentifierHome() { write(text); }
};

// A table loaded into a context, released at the end.
class LoadedTable {
public:
  LoadedTable() {
    context.ctxglobals = &globals;
    result = comn_intl_load_globalid(&context, &table);
    globals.ctxoids = table;
  }
  explicit LoadedTable(std::string_view text) : LoadedTable(IdentifierHome(text)) {}
  ~LoadedTable() { EXPECT_EQ(comn_intl_drop_globalid(&context, table), CS_SUCCEED); }
  LoadedTable(const LoadedTable &) = delete;
  LoadedTable &operator=(const LoadedTable &) = delete;

  // The identifiers of a class, in order.
  std::vector<const CsOID *> identifiers(CS_INT oidclass) const {
    std::vector<const CsOID *> all;
    for (const CsOID *oid = table->ot_oid[oidclass]; oid != nullptr; oid = oid->oidnext)
      all.push_back(oid);
    return all;
  }

  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  CS_OID_TABLE *table = nullptr;
  CS_RETCODE result = CS_FAIL;

private:
  explicit LoadedTable(const IdentifierHome &) : LoadedTable() {}
};

} // namespace zrvtest

#endif
