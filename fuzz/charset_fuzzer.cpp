// Any bytes as charset.loc: the loader answers with a told status, and every question about every pair of
// bytes, and about texts, is answered from inside the set that it gives.
#include <cstring>
#include <vector>

#include "fuzz_home.h"
#include "fuzz_input.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comnlib.h"

namespace {

using zrvfuzz::require;

constexpr CS_INT (*questions[])(CS_ATTRIB *, CS_BYTE *) noexcept = {
    comn_isalpha, comn_isupper,  comn_islower, comn_isdigit, comn_isspace,
    comn_ispunct, comn_isxdigit, comn_isgraph, comn_get_lex};

void ask(CS_ATTRIB *set, CS_BYTE first, CS_BYTE second) {
  // What is behind the second byte may be copied and never decides.
  CS_BYTE character[16] = {first, second}, form[16];
  for (const auto question : questions)
    require(question(set, character) >= 0);
  const CS_INT width = comn_char_width(set, character);
  require(width >= 1 && width <= 15);
  CS_BYTE *next = character;
  comn_inc_char(set, &next);
  require(next == character + width);
  comn_toupper(set, character, form);
  comn_tolower(set, character, form);
  comn_to_ascii(set, character);
}

// A text of exactly its size: what reads or writes behind it is seen.
void ask_text(CS_ATTRIB *set, const std::vector<CS_BYTE> &text) {
  std::vector<CS_BYTE> source(text), dest(text.size());
  CS_INT length = -1, whole = -1, inside = -1, behind = -1, count = -1;
  const auto size = static_cast<CS_INT>(source.size());
  comn_str_to_ascii(source.data(), size, dest.data(), &length, set);
  require(length >= 0 && length <= size);
  comn_whole_char(set, source.data(), source.data() + size, &whole, &inside, &behind, &count);
  require(whole >= 0 && inside >= 0 && whole + inside == size && (inside == 0) == (behind == 0));
  source.push_back(0);
  const CS_BYTE *const found = comn_mb_strchr(set, source.data(), 'a');
  require(found == nullptr || *found == 'a');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const zrvfuzz::Home home("charsets/set/charset.loc");
  home.write(data, size);
  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  context.ctxglobals = &globals;
  CsOID oid{};
  CsLocCache cache{};
  char charname[] = "set";
  cache.charname = charname;
  cache.charnamelen = 3;
  const CS_RETCODE result = comn__intl_load_charset(&context, &oid, &cache, nullptr, 0);
  require(result == CS_SUCCEED || result == CS_FAIL || result == COM_INTL_ERROR);
  require((cache.locchardesc != nullptr) == (result == CS_SUCCEED));
  require(globals.cmg_chardesc == cache.locchardesc);
  if (cache.locchardesc == nullptr)
    return 0;
  CS_ATTRIB *const set = cache.locchardesc->char_attrib;
  require(set->cs_class == 1 || set->cs_class == 2);
  require(std::memchr(set->cs_name, 0, sizeof set->cs_name) != nullptr);
  std::vector<CS_BYTE> text;
  for (int first = 0; first < 256; ++first)
    for (const int second : {0, 0x2F, 0x30, 0x39, 0x3A, 0x41, 0x80, 0xFF}) {
      ask(set, static_cast<CS_BYTE>(first), static_cast<CS_BYTE>(second));
      text.assign({static_cast<CS_BYTE>(first), static_cast<CS_BYTE>(second), 'a',
                   static_cast<CS_BYTE>(first)});
      ask_text(set, text);
    }
  return com_intl_chardesc_drop(&context) != CS_SUCCEED;
}
