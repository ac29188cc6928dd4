// The compiler of sort orders: from the entries of a file to a table of weights.
//
// Weights are one byte each, so an entry with more values, or a value with more ties, than a byte
// counts is refused like any other limit that is passed.
#include <algorithm>
#include <cstring>

#include "checks.h"
#include "section_files.h"
#include "sortordr.h"

namespace {

constexpr CS_CHAR blank = ' ';
constexpr CS_CHAR tie = '=';
constexpr CS_CHAR end_of_text = '\0';
constexpr CS_INT largest_weight = 255;
// The entry of the next-character table in which the mark stands: up to where the table is filled.
constexpr CS_INT mark = 255;

CS_BYTE to_byte(CS_INT value) noexcept {
  return static_cast<CS_BYTE>(value);
}

void skip_blanks(const CS_CHAR *&text) noexcept {
  while (*text == blank)
    ++text;
}

// ---- ligatures ----

// The bytes of a value that closes an entry "lig" by its first word.
struct Closing {
  const char *word;
  size_t length;
  CS_BYTE type;
};

constexpr Closing closings[] = {{"after ", 6, LIG_AFTER}, {"equal ", 6, LIG_EQUAL}};

const Closing *find_closing(const CS_CHAR *value) noexcept {
  for (const Closing &closing : closings)
    if (std::strncmp(value, closing.word, closing.length) == 0)
      return &closing;
  return nullptr;
}

bool is_in_ligature(const LIGSTRUCT *ligs, CS_INT count, CS_BYTE byte) noexcept {
  for (const LIGSTRUCT *slot = ligs; slot != ligs + count; ++slot)
    if (std::strchr(reinterpret_cast<const char *>(slot->lig), byte) != nullptr)
      return true;
  return false;
}

// How often a byte is one of the two characters that these slots sort as, of slots that sort after
// them.
CS_INT count_after(const LIGSTRUCT *ligs, CS_INT count, CS_BYTE byte) noexcept {
  CS_INT result = 0;
  for (const LIGSTRUCT *slot = ligs; slot != ligs + count; ++slot)
    if (slot->type == LIG_AFTER)
      result += (slot->first == byte) + (slot->second == byte);
  return result;
}

bool is_base(const LIGSTRUCT *ligs, CS_INT count, CS_BYTE byte) noexcept {
  return std::any_of(ligs, ligs + count, [byte](const LIGSTRUCT &slot) {
    return slot.first == byte || slot.second == byte;
  });
}

// Reads "a = b = c" into slot `slot`. Of the slots up to it those before `closed` have their two
// characters.
bool read_tied_bytes(const CS_CHAR *value, LIGSTRUCT *ligs, CS_INT closed, CS_INT slot) noexcept {
  for (CS_INT i = 0;; ++i) {
    skip_blanks(value);
    const auto byte = static_cast<CS_BYTE>(*value);
    if (byte == end_of_text || i == LIG_BYTES || is_in_ligature(ligs, slot + 1, byte) ||
        is_base(ligs, closed, byte))
      return false;
    ligs[slot].lig[i] = byte;
    ++value;
    skip_blanks(value);
    if (*value == end_of_text)
      return true;
    if (*value++ != tie)
      return false;
  }
}

// The two characters behind the word that closes an entry, into the slots from `first` on.
bool read_bases(const CS_CHAR *text, CS_BYTE type, LIGSTRUCT *ligs, CS_INT first,
                CS_INT end) noexcept {
  skip_blanks(text);
  for (const CS_CHAR *base = text; base != text + 2; ++base)
    if (*base == end_of_text || is_in_ligature(ligs, end, static_cast<CS_BYTE>(*base)))
      return false;
  if (text[2] != end_of_text)
    return false;
  for (CS_INT slot = first; slot < end; ++slot) {
    ligs[slot].first = static_cast<CS_BYTE>(text[0]);
    ligs[slot].second = static_cast<CS_BYTE>(text[1]);
    ligs[slot].type = type;
  }
  return true;
}

// The weights of one of the two characters of slot `slot`, as its byte number `tertiary` has them.
// The slots before it that sort after the same character have taken the secondary weights before;
// deliberately that counts for a slot that sorts equal as well.
bool weigh_base(const SO_1CLASS *so, const LIGSTRUCT *ligs, CS_INT slot, CS_BYTE base,
                CS_INT tertiary, LSC *weights) noexcept {
  const LSC own = so->lscs[base];
  const CS_INT secondary =
      own.pst.s + count_after(ligs, slot, base) + (ligs[slot].type == LIG_AFTER ? 1 : 0);
  weights->pst.p = own.pst.p;
  weights->pst.s = to_byte(secondary);
  weights->pst.t = to_byte(tertiary);
  weights->pst.smelist = SMEL_NONE;
  return secondary <= largest_weight;
}

// ---- characters ----

// What may stand behind a character in a value.
bool ends_character(CS_CHAR byte) noexcept {
  return byte == blank || byte == tie || byte == end_of_text;
}

void replace_bits(CS_BYTE &bits, CS_INT old_bits, CS_INT new_bits) noexcept {
  bits = to_byte((bits & ~old_bits) | new_bits);
}

// The first character of a primary weight follows all weights from the last one that has such a
// character.
void note_first_character(CS_BYTE *nextchar, CS_INT primary, CS_BYTE byte) noexcept {
  for (CS_INT i = nextchar[mark]; i < primary; ++i)
    nextchar[i] = byte;
  nextchar[mark] = to_byte(primary);
}

// A free element, at the end of no list yet; null when all are in use.
SMEL *new_element(SO_1CLASS *so, CS_INT type) noexcept {
  if (so->nsmels >= SMEL_COUNT)
    return nullptr;
  SMEL *const element = &so->smels[so->nsmels++];
  element->next_smel = SMEL_NONE;
  element->type_smel = to_byte(type);
  element->noxtraw = type == SMEL_DOUBLE;
  return element;
}

CS_BYTE index_of(const SO_1CLASS *so, const SMEL *element) noexcept {
  return static_cast<CS_BYTE>(element - so->smels);
}

// The lists that a file makes hold nothing but double characters while characters are recorded. Who calls
// comn__add_smel may bring a table with other elements, and these two say which of them are refused.

CS_RETCODE add_byte(SO_1CLASS *so, CS_BYTE byte, const LSC &weights) noexcept {
  LSC &own = so->lscs[byte];
  if (own.pst.t > 0)
    return CS_FAIL;
  for (CS_BYTE i = own.pst.smelist; i != SMEL_NONE; i = so->smels[i].next_smel)
    if (so->smels[i].type_smel != SMEL_DOUBLE && so->smels[i].next_smel != SMEL_NONE)
      return CS_FAIL;
  own.pst.p = weights.pst.p;
  own.pst.s = weights.pst.s;
  own.pst.t = weights.pst.t;
  return CS_SUCCEED;
}

CS_RETCODE add_double(SO_1CLASS *so, const CS_BYTE *character, const LSC &weights) noexcept {
  constexpr CS_BYTE empty_element = 2; // passed over
  CS_BYTE &list = so->lscs[character[0]].pst.smelist;
  for (CS_BYTE i = list; i != SMEL_NONE; i = so->smels[i].next_smel) {
    const SMEL &element = so->smels[i];
    if (element.type_smel == empty_element)
      continue;
    if (element.type_smel != SMEL_DOUBLE || element.smel_types.sm_1type.xtraw == character[1])
      return CS_FAIL;
  }
  SMEL *const element = new_element(so, SMEL_DOUBLE);
  if (element == nullptr)
    return CS_FAIL;
  element->smel_types.sm_1type.xtraw = character[1];
  element->smel_types.sm_1type.lsc1 = weights;
  element->next_smel = list;
  list = index_of(so, element);
  return CS_SUCCEED;
}

// An entry "char" while its values are read.
struct CharEntry {
  SO_1CLASS *so;
  const LIGSTRUCT *ligs;
  CS_INT count;
  CS_BYTE *nextchar;
  bool has_preference;
  CS_INT primary;
  CS_INT secondary = 0;
  CS_BYTE last_first; // the first byte that was read last

  // Takes a character of `length` bytes off the text.
  bool take(const CS_CHAR *&text, CS_INT length, CS_BYTE *character) noexcept {
    character[0] = static_cast<CS_BYTE>(*text);
    if (character[0] == end_of_text || is_in_ligature(ligs, count, character[0]))
      return false;
    ++text;
    last_first = character[0];
    if (length == 1)
      return true;
    character[1] = static_cast<CS_BYTE>(*text);
    if (ends_character(*text) || is_in_ligature(ligs, count, character[1]))
      return false;
    ++text;
    so->stat1 |= SO_EXPANDS;
    return true;
  }

  bool record(CS_BYTE *character, CS_INT length, CS_INT tertiary) noexcept {
    if (secondary > largest_weight || tertiary > largest_weight)
      return false;
    LSC weights;
    weights.pst.p = to_byte(primary);
    weights.pst.s = to_byte(secondary);
    weights.pst.t = to_byte(tertiary);
    weights.pst.smelist = SMEL_NONE;
    if (comn__add_smel(so, character, length, &weights) != CS_SUCCEED)
      return false;
    if (length == 1 && secondary == 0 && tertiary == 1)
      note_first_character(nextchar, primary, character[0]);
    return true;
  }

  // Reads one value: characters tied with "=", up to its end or to a blank.
  bool read(const CS_CHAR *text) noexcept {
    if (*text == end_of_text)
      return false;
    if (secondary > 1 && (so->stat1 & SO_PRIMARY) != 0)
      replace_bits(so->stat1, SO_PRIMARY, SO_SECONDARY);
    // Decided once: all characters of a value have the same length.
    const CS_INT length = ends_character(text[1]) ? 1 : 2;
    CS_INT increment = 1;
    CS_CHAR separator = tie;
    for (CS_INT tertiary = 1; separator == tie; ++tertiary) {
      if (tertiary >= 2 && has_preference)
        replace_bits(so->stat1, SO_PRIMARY | SO_SECONDARY, SO_PREFERENCE);
      CS_BYTE character[2];
      if (!take(text, length, character) || !record(character, length, tertiary))
        return false;
      // Room for the ligatures that sort after this character.
      if (length == 1)
        increment += count_after(ligs, count, character[0]);
      separator = *text++;
      if (separator == tie)
        so->stat1 |= SO_TIES;
    }
    secondary += increment;
    return separator == blank || separator == end_of_text;
  }
};

// ---- the finished table ----

// A byte that has weights of its own and begins double characters: the byte by itself goes to the
// end of its list, so that the double characters are tried first.
bool append_byte(SO_1CLASS *so, LSC &own) noexcept {
  SMEL *const element = new_element(so, SMEL_BYTE);
  if (element == nullptr)
    return false;
  LSC &weights = element->smel_types.sm_0type.lsc1;
  weights = own;
  CS_BYTE last = own.pst.smelist;
  while (so->smels[last].next_smel != SMEL_NONE)
    last = so->smels[last].next_smel;
  so->smels[last].next_smel = index_of(so, element);
  own.pst.p = own.pst.s = own.pst.t = 0;
  return true;
}

void note_next(LSC &weights, const CS_BYTE *nextchar) noexcept {
  weights.pst.smelist = nextchar[weights.pst.p];
}

bool note_next(SMEL &element, const CS_BYTE *nextchar) noexcept {
  switch (element.type_smel) {
  case SMEL_BYTE:
    note_next(element.smel_types.sm_0type.lsc1, nextchar);
    return true;
  case SMEL_DOUBLE:
    note_next(element.smel_types.sm_1type.lsc1, nextchar);
    return true;
  case SMEL_LIGATURE:
    note_next(element.smel_types.sm_3type.lsc1, nextchar);
    note_next(element.smel_types.sm_3type.lsc2, nextchar);
    return true;
  default:
    return false;
  }
}

bool finish_byte(SO_1CLASS *so, LSC &own, const CS_BYTE *nextchar) noexcept {
  const CS_BYTE list = own.pst.smelist;
  if (own.pst.t > 0 && list != SMEL_NONE) {
    if (!append_byte(so, own))
      return false;
  } else if (own.pst.t == 0 && (list == SMEL_NONE || so->smels[list].type_smel == SMEL_DOUBLE)) {
    return false; // no meaning of its own
  }
  if (own.pst.t > 0) {
    note_next(own, nextchar);
    return true;
  }
  for (CS_BYTE i = list; i != SMEL_NONE; i = so->smels[i].next_smel)
    if (!note_next(so->smels[i], nextchar))
      return false;
  return true;
}

} // namespace

CS_RETCODE comn__build_class1(CsContext *context, INTL_LOCFILE *ifile, CS_CHAR *key,
                              CsSortDesc *sortdesc) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(ifile, CS_FAIL);
  COMN_CHECK_PTR(sortdesc, CS_FAIL);
  COMN_CHECK_PTR(sortdesc->char_sort_descript, CS_FAIL);
  if (sortdesc->char_sort_descript->isbin != 0)
    return CS_SUCCEED;
  COMN_CHECK_PTR(key, CS_FAIL);
  auto *const so = static_cast<SO_1CLASS *>(comn_calloc(1, sizeof(SO_1CLASS)));
  if (so == nullptr)
    return CS_MEM_ERROR;
  sortdesc->char_sort_class = so;
  for (LSC &weights : so->lscs)
    weights.pst.smelist = SMEL_NONE;
  for (SMEL &element : so->smels)
    element.next_smel = SMEL_NONE;
  LIGSTRUCT ligs[LIG_COUNT] = {};
  CS_INT count = 0;
  CS_BYTE nextchar[256] = {};
  so->stat1 = SO_PRIMARY;

  int status = 0;
  while (std::strcmp(key, "lig") == 0) {
    so->stat1 |= SO_EXPANDS | SO_LIGATURES;
    const CS_RETCODE result = comn__get_lig(context, ifile, ligs, &count);
    if (result != CS_SUCCEED)
      return result;
    key = intl_nextentry(ifile, &status);
    if (key == nullptr)
      return comn::missing_result(context, status);
  }
  // "ignore char" ends the reading; what follows the last weight is not looked at.
  for (CS_INT primary = 1; primary <= SO_WEIGHTS && std::strcmp(key, "ignore char") != 0;
       ++primary) {
    if (std::strcmp(key, "char") != 0)
      return CS_FAIL;
    const CS_RETCODE result =
        comn__get_char(context, ifile, sortdesc->char_sort_descript->preference, ligs, count,
                       primary, nextchar, so);
    if (result != CS_SUCCEED)
      return result;
    key = intl_nextentry(ifile, &status);
    if (key == nullptr)
      break;
  }
  if (status < 0)
    return comn::reader_result(context, status);
  const CS_RETCODE placed = comn__do_ligs(so, ligs, count);
  return placed == CS_SUCCEED ? comn__check_sort(so, nextchar) : placed;
}

CS_RETCODE comn__get_lig(CsContext *context, INTL_LOCFILE *ifile, LIGSTRUCT *ligs,
                         CS_INT *count) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(ifile, CS_FAIL);
  COMN_CHECK_PTR(ligs, CS_FAIL);
  COMN_CHECK_PTR(count, CS_FAIL);
  int status = 0;
  for (CS_INT slot = *count;; ++slot) {
    const CS_CHAR *value = intl_nextvalue(ifile, &status);
    if (value == nullptr)
      return comn::missing_result(context, status);
    skip_blanks(value);
    if (const Closing *const closing = find_closing(value)) {
      // An entry has a slot at least.
      if (slot == *count || !read_bases(value + closing->length, closing->type, ligs, *count, slot))
        return CS_FAIL;
      *count = slot;
      return CS_SUCCEED;
    }
    if (slot >= LIG_COUNT || !read_tied_bytes(value, ligs, *count, slot))
      return CS_FAIL;
  }
}

CS_RETCODE comn__get_char(CsContext *context, INTL_LOCFILE *ifile, CS_INT preference,
                          LIGSTRUCT *ligs, CS_INT count, CS_INT primary, CS_BYTE *nextchar,
                          SO_1CLASS *so) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(ifile, CS_FAIL);
  COMN_CHECK_PTR(ligs, CS_FAIL);
  COMN_CHECK_PTR(nextchar, CS_FAIL);
  COMN_CHECK_PTR(so, CS_FAIL);
  CharEntry entry = {.so = so,
                     .ligs = ligs,
                     .count = count,
                     .nextchar = nextchar,
                     .has_preference = preference != 0,
                     .primary = primary,
                     .last_first = so->last_char};
  int status = 0;
  while (const CS_CHAR *const value = intl_nextvalue(ifile, &status))
    if (!entry.read(value))
      return CS_FAIL;
  if (status < 0)
    return comn::reader_result(context, status);
  so->last_char = entry.last_first;
  return CS_SUCCEED;
}

CS_RETCODE comn__add_smel(SO_1CLASS *so, CS_BYTE *character, CS_INT length, LSC *weights) noexcept {
  COMN_CHECK_PTR(so, CS_FAIL);
  COMN_CHECK_PTR(character, CS_FAIL);
  COMN_CHECK_PTR(weights, CS_FAIL);
  COMN_CHECK(length == 1 || length == 2, CS_FAIL);
  return length == 1 ? add_byte(so, character[0], *weights) : add_double(so, character, *weights);
}

CS_RETCODE comn__do_ligs(SO_1CLASS *so, LIGSTRUCT *ligs, CS_INT count) noexcept {
  COMN_CHECK_PTR(so, CS_FAIL);
  COMN_CHECK_PTR(ligs, CS_FAIL);
  for (CS_INT slot = 0; slot < count; ++slot) {
    const LIGSTRUCT &ligature = ligs[slot];
    for (CS_INT i = 0; i < LIG_BYTES && ligature.lig[i] != end_of_text; ++i) {
      const CS_INT tertiary = i + 1;
      if (tertiary > 1)
        so->stat1 |= SO_TIES;
      SMEL *const element = new_element(so, SMEL_LIGATURE);
      if (element == nullptr)
        return CS_FAIL;
      struct sm_3type &both = element->smel_types.sm_3type;
      if (!weigh_base(so, ligs, slot, ligature.first, tertiary, &both.lsc1) ||
          !weigh_base(so, ligs, slot, ligature.second, tertiary, &both.lsc2))
        return CS_FAIL;
      so->lscs[ligature.lig[i]].pst.smelist = index_of(so, element);
    }
  }
  return CS_SUCCEED;
}

CS_RETCODE comn__check_sort(SO_1CLASS *so, CS_BYTE *nextchar) noexcept {
  COMN_CHECK_PTR(so, CS_FAIL);
  COMN_CHECK_PTR(nextchar, CS_FAIL);
  so->lscs[0].pst.p = so->lscs[0].pst.s = 0;
  so->lscs[0].pst.t = 1;
  so->lscs[0].pst.smelist = SMEL_NONE;
  nextchar[mark] = 0;
  for (LSC &own : so->lscs)
    if (!finish_byte(so, own, nextchar))
      return CS_FAIL;
  return CS_SUCCEED;
}
