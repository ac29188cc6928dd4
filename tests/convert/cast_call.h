// A member of the cast-context conversions, called as a client would: with a source of its own bytes and
// a guarded destination.
#ifndef ZRVTEST_CAST_CALL_H
#define ZRVTEST_CAST_CALL_H

#include <cstring>
#include <ostream>
#include <string>

#include "guarded_buffer.h"
#include "zrvcomn/castctx.h"

namespace zrvtest {

using CastFunction = CS_RETCODE (*)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);

struct CastMember {
  const char *source, *destination;
  CastFunction function;

  std::string name() const { return "comnb_" + std::string(source) + "to" + destination; }
};

inline std::ostream &operator<<(std::ostream &out, const CastMember &member) {
  return out << member.name();
}

// Every member that the header declares.
#define ZRVTEST_CAST_MEMBER(source, destination)                                                   \
  {#source, #destination, comnb_##source##to##destination},
inline const CastMember cast_members[] = {ZRV_CAST_MEMBERS(ZRVTEST_CAST_MEMBER)};
#undef ZRVTEST_CAST_MEMBER

inline const CastMember *find_cast_member(const std::string &source,
                                          const std::string &destination) {
  for (const CastMember &member : cast_members)
    if (source == member.source && destination == member.destination)
      return &member;
  return nullptr;
}

// The shape of a numeric.
struct CastShape {
  int precision = 0, scale = 0;
};

// A call: what the context says, the source's bytes and the shapes of both sides.
struct CastCall {
  CAST_CONTEXT context{};
  std::string source;
  CastShape from, to;
  int type = 0; // of the destination

  CastCall() = default;
  explicit CastCall(std::string bytes) : source(std::move(bytes)) {}
};

struct CastResult {
  CS_RETCODE status;
  CS_INT len;
  std::string bytes; // all of the capacity
  int precision, scale;

  std::string text() const {
    return bytes.substr(0, len < 0 ? 0 : std::min(static_cast<size_t>(len), bytes.size()));
  }
  template <class T>
  T value() const {
    T result{};
    EXPECT_GE(bytes.size(), sizeof result);
    std::memcpy(&result, bytes.data(), std::min(bytes.size(), sizeof result));
    return result;
  }
  // True when no byte from `first` on was written.
  bool is_untouched(size_t first = 0) const {
    return bytes.find_first_not_of(static_cast<char>(GuardedBuffer::filler), first) ==
           std::string::npos;
  }
};

inline bool operator==(const CastResult &a, const CastResult &b) {
  return a.status == b.status && a.len == b.len && a.bytes == b.bytes;
}

inline std::ostream &operator<<(std::ostream &out, const CastResult &result) {
  out << "status " << result.status << ", len " << result.len << ", bytes";
  for (const char c : result.bytes)
    out << ' ' << std::hex << (c & 0xFF) << std::dec;
  return out;
}

// What the destination's length holds before a call.
constexpr CS_INT untouched_len = -4711;

// From and to addresses that suit no type. What a member does not read holds rubbish.
inline CastResult cast(CastFunction function, const CastCall &call, size_t capacity) {
  GuardedBuffer from(call.source.size(), 1), to(capacity, 3);
  std::memcpy(from.data(), call.source.data(), call.source.size());
  __CONSTANT src, dest;
  std::memset(&src, 0xDB, sizeof src);
  std::memset(&dest, 0xDB, sizeof dest);
  src.len = static_cast<CS_INT>(call.source.size());
  src.value = from.data();
  src.prec = static_cast<CS_BYTE>(call.from.precision);
  src.scale = static_cast<CS_BYTE>(call.from.scale);
  dest.len = untouched_len;
  dest.maxlen = static_cast<CS_INT>(capacity);
  dest.type = static_cast<CS_BYTE>(call.type);
  dest.prec = static_cast<CS_BYTE>(call.to.precision);
  dest.scale = static_cast<CS_BYTE>(call.to.scale);
  dest.value = to.data();
  CAST_CONTEXT context = call.context;
  const CS_RETCODE status = function(&context, &src, &dest);
  EXPECT_EQ(std::memcmp(from.data(), call.source.data(), call.source.size()), 0);
  EXPECT_EQ(std::memcmp(&context, &call.context, sizeof context), 0) << "the context is only read";
  EXPECT_EQ(dest.maxlen, static_cast<CS_INT>(capacity));
  return {status, dest.len, to.contents(), dest.prec, dest.scale};
}

template <class T>
std::string cast_bytes(T value) {
  return std::string(reinterpret_cast<const char *>(&value), sizeof value);
}

} // namespace zrvtest

#endif
