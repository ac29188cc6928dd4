// The cache of message texts: loading a file's sections, loading single texts when they are missed,
// dropping the oldest.
//
// A CS_MESSAGE has its texts twice: each hangs under its section, where look-ups find it, and in the
// history of all texts, newest first, whose end is dropped when there are too many.
#include <climits>
#include <cstring>
#include <iterator>

#include "checks.h"
#include "comerr.h"
#include "leading_integer.h"
#include "section_files.h"
#include "table.h"
#include "zrvintl.h"

COMN_DEFINE_TABLE(Comlocsections) = {
    {COM_ERRSEC_DEFAULTS, "comdefaults"},
    {COM_ERRSEC_LAYER, "comlayer"},
    {COM_ERRSEC_ORIGIN, "comorigin"},
    {COM_ERRSEC_API, "comapierror"},
};

COMN_DEFINE_TABLE(Comdeferrs) = {
    {COM_ERRSEC_DEFAULTS, 1},
    {COM_ERRSEC_DEFAULTS, 2},
    {COM_ERRSEC_DEFAULTS, 3},
    {COM_ERRSEC_DEFAULTS, 4},
};

namespace {

constexpr CS_CHAR file_name[] = "comnlib.loc";
constexpr CS_INT most_errors = 100; // in one call
constexpr CS_INT longest_state = sizeof CsErrorCache::errcode - 1;
// Three times a text and its terminator are within CS_INT.
constexpr CS_INT longest_text = INT_MAX / 3 - 1;

CsLocCache *cache_of(const CS_ERRHAN *errhan) noexcept {
  return static_cast<CsLocCache *>(errhan->err_locale->messageptr);
}

bool is_equal(const CS_CHAR *a, const CS_CHAR *b) noexcept {
  return std::strcmp(a, b) == 0;
}

CS_CHAR *new_copy(const CS_CHAR *text) noexcept {
  const size_t size = std::strlen(text) + 1;
  auto *const copy = static_cast<CS_CHAR *>(comn_malloc(size));
  return copy != nullptr ? static_cast<CS_CHAR *>(std::memcpy(copy, text, size)) : nullptr;
}

template <class Record>
Record *new_record() noexcept {
  return static_cast<Record *>(comn_calloc(1, sizeof(Record)));
}

// ---- records ----

CsErrFileCache *find_file(const CS_MESSAGE *message, const CS_CHAR *name) noexcept {
  CsErrFileCache *file = message->locfilecache;
  while (file != nullptr && !is_equal(file->errfilename, name))
    file = file->next;
  return file;
}

CsErrSecCache *section_of(const CsErrFileCache *file, CS_INT tag) noexcept {
  CsErrSecCache *section = file->errsecs;
  while (section != nullptr && section->errtag != tag)
    section = section->next;
  return section;
}

CsErrFileCache *new_file(const CS_CHAR *name) noexcept {
  auto *const file = new_record<CsErrFileCache>();
  if (file != nullptr && (file->errfilename = new_copy(name)) == nullptr) {
    comn_free(file);
    return nullptr;
  }
  return file;
}

// A new section at the head of a file's.
CsErrSecCache *add_section(CsErrFileCache *file, const CS_ERRSECTION &wanted) noexcept {
  auto *const section = new_record<CsErrSecCache>();
  if (section == nullptr)
    return nullptr;
  section->errtag = wanted.errtag;
  section->errstr = new_copy(wanted.errstr);
  if (section->errstr == nullptr) {
    comn_free(section);
    return nullptr;
  }
  section->next = file->errsecs;
  file->errsecs = section;
  return section;
}

void free_entry(CsErrorCache *entry) noexcept {
  comn_free(entry->errmsg);
  comn_free(entry);
}

// Takes the text at `*place` of the history out of the cache.
void remove_entry(CS_MESSAGE *message, CsErrorCache **place) noexcept {
  CsErrorCache *const entry = *place;
  *place = entry->histnext;
  CsErrorCache **link = &entry->errseccache->errcache;
  while (*link != entry)
    link = &(*link)->next;
  *link = entry->next;
  free_entry(entry);
  --message->locerrcnt;
}

void remove_oldest(CS_MESSAGE *message) noexcept {
  CsErrorCache **place = &message->locerrhist;
  while ((*place)->histnext != nullptr)
    place = &(*place)->histnext;
  remove_entry(message, place);
}

// What com_err_init does to a cache, until it is committed: without that it is undone.
//
// The texts that were there are kept out of the history meanwhile, so that none of them is dropped to
// make room for one that may not stay.
class Load {
public:
  Load(CS_MESSAGE *to, CsErrFileCache *existing) noexcept
      : message(to), file(existing), is_new(existing == nullptr), old_history(to->locerrhist),
        old_count(to->locerrcnt), old_sections(is_new ? nullptr : existing->errsecs) {
    message->locerrhist = nullptr;
    message->locerrcnt = 0;
  }
  Load(const Load &) = delete;
  Load &operator=(const Load &) = delete;

  ~Load() noexcept {
    if (!committed)
      undo();
    // Those that were there before are the older ones.
    CsErrorCache **end = &message->locerrhist;
    while (*end != nullptr)
      end = &(*end)->histnext;
    *end = old_history;
    message->locerrcnt += old_count;
    while (message->locerrcnt > COM_ERR_CACHE_SIZE)
      remove_oldest(message);
  }

  bool make_file(const CS_CHAR *name) noexcept {
    if (is_new)
      file = new_file(name);
    return file != nullptr;
  }

  CsErrFileCache *target() const noexcept { return file; }

  // The file is linked only now, as the last of its locale.
  void commit() noexcept {
    committed = true;
    if (!is_new)
      return;
    CsErrFileCache **end = &message->locfilecache;
    while (*end != nullptr)
      end = &(*end)->next;
    *end = file;
  }

private:
  void undo() noexcept {
    while (message->locerrhist != nullptr)
      remove_entry(message, &message->locerrhist);
    if (file == nullptr)
      return;
    while (file->errsecs != old_sections) {
      CsErrSecCache *const section = file->errsecs;
      file->errsecs = section->next;
      comn_free(section->errstr);
      comn_free(section);
    }
    if (is_new) {
      comn_free(file->errfilename);
      comn_free(file);
    }
  }

  CS_MESSAGE *message;
  CsErrFileCache *file;
  bool is_new;
  bool committed = false;
  CsErrorCache *old_history;
  CS_INT old_count;
  CsErrSecCache *old_sections;
};

// ---- reading ----

// The pieces of a text, one behind the other.
class Text {
public:
  Text() = default;
  Text(const Text &) = delete;
  Text &operator=(const Text &) = delete;
  ~Text() noexcept { comn_free(bytes); }

  CS_RETCODE add_filtered(const CS_CHAR *piece) noexcept {
    const size_t size = std::strlen(piece) + 1;
    if (size > static_cast<size_t>(longest_text - used))
      return CS_FAIL;
    auto *const grown =
        static_cast<CS_CHAR *>(comn_realloc(bytes, static_cast<size_t>(used) + size));
    if (grown == nullptr)
      return CS_MEM_ERROR;
    bytes = grown;
    used += com__err_filterescape(piece, bytes + used);
    return CS_SUCCEED;
  }

  CS_CHAR *data() const noexcept { return bytes; }
  CS_INT length() const noexcept { return used; }

private:
  CS_CHAR *bytes = nullptr;
  CS_INT used = 0;
};

bool is_wanted(const CS_ERRIDX *errors, CS_INT count, CS_INT tag, CS_MSGNUM number) noexcept {
  for (CS_INT i = 0; i < count; ++i)
    if (errors[i].errtag == tag && errors[i].errnum == number)
      return true;
  return false;
}

// The value that an entry must have next.
CS_RETCODE next_value(CsContext *context, INTL_LOCFILE *file, int &status,
                      const CS_CHAR *&value) noexcept {
  value = intl_nextvalue(file, &status);
  if (value != nullptr)
    return CS_SUCCEED;
  return status < 0 ? comn::reader_result(context, status) : CS_FAIL;
}

// Reads the values of an entry, the SQL state and the pieces of the text, into the cache.
CS_RETCODE load_entry(CsContext *context, CS_ERRHAN *errhan, INTL_LOCFILE *file,
                      CsErrSecCache *section, CS_MSGNUM number) noexcept {
  int status = 0;
  const CS_CHAR *value;
  CS_RETCODE result = next_value(context, file, status, value);
  if (result != CS_SUCCEED)
    return result;
  CS_CHAR state[longest_state + 1];
  intl_strlcpy(state, value, sizeof state);
  Text text;
  while (status == 1) {
    result = next_value(context, file, status, value);
    if (result == CS_SUCCEED)
      result = text.add_filtered(value);
    if (result != CS_SUCCEED)
      return result;
  }
  return com__update_cache(context, errhan, section, number, state,
                           static_cast<CS_INT>(std::strlen(state)), text.data(), text.length());
}

// Reads a text that is not in the cache. That it could not be read is told by the look-up that
// follows: only a file that cannot be opened or closed is a failure here.
CS_RETCODE load_missed(CsContext *context, CS_ERRHAN *errhan, CsErrSecCache *section,
                       CS_MSGNUM number) noexcept {
  const CsLocCache *const cache = cache_of(errhan);
  INTL_LOCFILE file;
  const CS_RETCODE opened =
      comn__open_msgfile(context, cache->langname, cache->langnamelen, errhan->err_file,
                         static_cast<CS_INT>(std::strlen(errhan->err_file)), &file, nullptr, 0);
  if (opened != CS_SUCCEED)
    return opened;
  if (comn::find_section(context, &file, section->errstr) == CS_SUCCEED) {
    CS_ERRIDX wanted = {section->errtag, number};
    com__err_load_errors(context, errhan, &file, section, &wanted, 1);
  }
  return comn::close_behind(context, &file, CS_SUCCEED);
}

// ---- conversion ----

// Match modes of the conversion.
enum MatchMode : CS_INT { match_name = 1, match_message = 2 };

CS_RETCODE convert(CsContext *context, MatchMode mode, CS_CHAR *text, CS_INT length,
                   CsLocCache *cache, CS_CHAR *dest, CS_INT room, CS_INT *used) noexcept {
  CS_DATAFMT format{};
  format.datatype = CS_TYPE_CHAR;
  format.maxlength = room;
  *used = 0;
  return comn__convt_from_utf8(context, mode, reinterpret_cast<CS_BYTE *>(text), length, &format,
                               cache, dest, used);
}

// Converts a text into a new block, NUL-terminated.
CS_RETCODE convert_text(CsContext *context, CS_CHAR *text, CS_INT length, CsLocCache *cache,
                        CS_CHAR *&converted) noexcept {
  // What does not fit into as many bytes gets three times as many.
  for (const CS_INT room : {length, 3 * length}) {
    converted = static_cast<CS_CHAR *>(comn_malloc(static_cast<size_t>(room) + 1));
    if (converted == nullptr)
      return CS_MEM_ERROR;
    CS_INT used = 0;
    const CS_RETCODE result =
        length > 0 ? convert(context, match_message, text, length, cache, converted, room, &used)
                   : CS_SUCCEED;
    if (result == CS_SUCCEED || result == CS_CONV_PARTIAL) {
      converted[used] = '\0';
      return CS_SUCCEED;
    }
    comn_free(converted);
    if (result != CS_CONV_TRUNCATED || room != length)
      return result;
  }
  return CS_CONV_TRUNCATED;
}

} // namespace

CS_INT com__err_filterescape(const CS_CHAR *src, CS_CHAR *dest) noexcept {
  CS_CHAR *end = dest;
  while (*src != '\0') {
    const CS_CHAR byte = *src++;
    *end++ = byte;
    if (byte != '\\')
      continue;
    switch (*src) {
    case 'n':
      end[-1] = '\n';
      break;
    case 'r':
      end[-1] = '\r';
      break;
    case 't':
      end[-1] = '\t';
      break;
    case 'b':
      end[-1] = '\b';
      break;
    case 'f':
      end[-1] = '\f';
      break;
    case '"':
      end[-1] = '"';
      break;
    default: // deliberate: the backslash stays and what it stands before is lost
      break;
    }
    if (*src != '\0')
      ++src;
  }
  *end = '\0';
  return static_cast<CS_INT>(end - dest);
}

CsErrorCache *com__scan_cache(CsErrSecCache *section, CS_MSGNUM errnum) noexcept {
  CsErrorCache *entry = section->errcache;
  while (entry != nullptr && entry->errnum != errnum)
    entry = entry->next;
  return entry;
}

CS_RETCODE com__update_cache(CsContext *context, CS_ERRHAN *errhan, CsErrSecCache *section,
                             CS_MSGNUM errnum, CS_CHAR *state, CS_INT statelen, CS_CHAR *text,
                             CS_INT textlen) noexcept {
  CsLocCache *const cache = cache_of(errhan);
  CS_MESSAGE *const message = cache->locmessage;
  if (message->locerrcnt > COM_ERR_CACHE_SIZE - 1)
    remove_oldest(message);
  auto *const entry = new_record<CsErrorCache>();
  if (entry == nullptr)
    return CS_MEM_ERROR;
  CS_RETCODE result = convert_text(context, text, textlen, cache, entry->errmsg);
  if (result != CS_SUCCEED) {
    comn_free(entry);
    return result;
  }
  if (statelen > 0) {
    CS_INT used;
    result =
        convert(context, match_name, state, statelen, cache, entry->errcode, longest_state, &used);
    if (result != CS_SUCCEED && result != CS_CONV_TRUNCATED && result != CS_CONV_PARTIAL) {
      free_entry(entry);
      return result;
    }
    std::memset(entry->errcode + used, 0, sizeof entry->errcode - static_cast<size_t>(used));
  }
  entry->errnum = errnum;
  entry->errseccache = section;
  entry->next = section->errcache;
  section->errcache = entry;
  entry->histnext = message->locerrhist;
  message->locerrhist = entry;
  ++message->locerrcnt;
  return CS_SUCCEED;
}

CS_RETCODE com__err_load_errors(CsContext *context, CS_ERRHAN *errhan, INTL_LOCFILE *ifile,
                                CsErrSecCache *section, CS_ERRIDX *errors,
                                CS_INT numerrors) noexcept {
  if (numerrors < 1 || numerrors > most_errors)
    return COMN_TRACE(CS_FAIL);
  int status = 0;
  CS_INT seen = 0;
  while (seen < numerrors) {
    const CS_CHAR *const key = intl_nextentry(ifile, &status);
    if (key == nullptr)
      break;
    const CS_MSGNUM number = comn::leading_int(key);
    if (!is_wanted(errors, numerrors, section->errtag, number))
      continue;
    ++seen;
    if (com__scan_cache(section, number) != nullptr)
      continue;
    const CS_RETCODE result = load_entry(context, errhan, ifile, section, number);
    if (result != CS_SUCCEED)
      return COMN_TRACE(result);
  }
  return COMN_TRACE(comn::reader_result(context, status));
}

CS_RETCODE com__err_load_sections(CsContext *context, CS_ERRHAN *errhan, INTL_LOCFILE *ifile,
                                  CsErrFileCache *file, CS_ERRSECTION *sections, CS_INT numsections,
                                  CS_ERRIDX *deferrors, CS_INT numerrors) noexcept {
  int status = 0;
  CS_INT seen = 0;
  while (seen < numsections) {
    const CS_CHAR *const name = intl_nextsection(ifile, &status);
    if (name == nullptr)
      break;
    const CS_ERRSECTION *const end = sections + numsections;
    const CS_ERRSECTION *wanted = sections;
    while (wanted != end && !is_equal(wanted->errstr, name))
      ++wanted;
    if (wanted == end)
      continue;
    // Deliberate: a section that stands there again counts again, in the place of one that is missing.
    ++seen;
    CsErrSecCache *section = section_of(file, wanted->errtag);
    if (section == nullptr && (section = add_section(file, *wanted)) == nullptr)
      return COMN_TRACE(CS_MEM_ERROR);
    if (deferrors == nullptr || numerrors < 1)
      continue;
    const CS_RETCODE result =
        com__err_load_errors(context, errhan, ifile, section, deferrors, numerrors);
    if (result != CS_SUCCEED)
      return COMN_TRACE(result);
  }
  const CS_RETCODE result = comn::reader_result(context, status);
  return COMN_TRACE(result == CS_SUCCEED && seen < numsections ? CS_FAIL : result);
}

CS_RETCODE com_err_init(CsContext *context, CS_ERRHAN *errhan, CS_ERRSECTION *sections,
                        CS_INT numsections, CS_ERRIDX *deferrors, CS_INT numerrors) noexcept {
  if (context == nullptr || errhan == nullptr || errhan->err_locale == nullptr ||
      errhan->err_file == nullptr || sections == nullptr)
    return COMN_TRACE(CS_FAIL);
  const CsLocCache *const cache = cache_of(errhan);
  COMN_CHECK_PTR(cache, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(cache->locmessage, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(cache->langname, COMN_TRACE(CS_FAIL));

  Load load(cache->locmessage, find_file(cache->locmessage, errhan->err_file));
  if (!load.make_file(errhan->err_file))
    return COMN_TRACE(CS_MEM_ERROR);
  INTL_LOCFILE file;
  CS_RETCODE result =
      comn__open_msgfile(context, cache->langname, cache->langnamelen, errhan->err_file,
                         static_cast<CS_INT>(std::strlen(errhan->err_file)), &file, nullptr, 0);
  if (result != CS_SUCCEED)
    return COMN_TRACE(result);
  result = com__err_load_sections(context, errhan, &file, load.target(), sections, numsections,
                                  deferrors, numerrors);
  result = comn::close_behind(context, &file, result);
  if (result == CS_SUCCEED)
    load.commit();
  return COMN_TRACE(result);
}

CS_RETCODE com_errinit(CsContext *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxlocale, COMN_TRACE(CS_FAIL));
  auto *errhan = static_cast<CS_ERRHAN *>(context->ctxcomerrhan);
  if (errhan == nullptr) {
    errhan = new_record<CS_ERRHAN>();
    if (errhan == nullptr)
      return COMN_TRACE(CS_MEM_ERROR);
    errhan->err_file = new_copy(file_name);
    if (errhan->err_file == nullptr) {
      comn_free(errhan);
      return COMN_TRACE(CS_MEM_ERROR);
    }
    context->ctxcomerrhan = errhan;
  }
  errhan->err_locale = context->ctxlocale;
  return COMN_TRACE(com_err_init(context, errhan, const_cast<CS_ERRSECTION *>(own_Comlocsections),
                                 std::size(own_Comlocsections),
                                 const_cast<CS_ERRIDX *>(own_Comdeferrs),
                                 std::size(own_Comdeferrs)));
}

CS_RETCODE com_errdrop(CsContext *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  if (auto *const errhan = static_cast<CS_ERRHAN *>(context->ctxcomerrhan)) {
    comn_free(errhan->err_file);
    comn_free(errhan);
    context->ctxcomerrhan = nullptr;
  }
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com__err_getcache(CsContext *context, CS_ERRHAN *errhan, CS_INT errsection,
                             CS_MSGNUM errnum, CsErrorCache **entry) noexcept {
  if (context == nullptr || errhan == nullptr || errhan->err_locale == nullptr ||
      errhan->err_file == nullptr || entry == nullptr)
    return COMN_TRACE(CS_FAIL);
  const CsLocCache *const cache = cache_of(errhan);
  if (cache == nullptr || cache->locmessage == nullptr)
    return COMN_TRACE(CS_FAIL);
  const CsErrFileCache *const file = find_file(cache->locmessage, errhan->err_file);
  CsErrSecCache *const section = file != nullptr ? section_of(file, errsection) : nullptr;
  if (section == nullptr)
    return COMN_TRACE(CS_FAIL);
  CsErrorCache *found = com__scan_cache(section, errnum);
  if (found == nullptr) {
    const CS_RETCODE result = load_missed(context, errhan, section, errnum);
    if (result != CS_SUCCEED)
      return COMN_TRACE(result);
    found = com__scan_cache(section, errnum);
    if (found == nullptr)
      return COMN_TRACE(CS_FAIL);
  }
  *entry = found;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_err_msg(CsContext *context, CS_ERRHAN *errhan, CS_ERRIDX *erridx,
                       CS_CHAR **errstr) noexcept {
  if (erridx == nullptr || errstr == nullptr)
    return COMN_TRACE(CS_FAIL);
  CsErrorCache *entry = nullptr;
  const CS_RETCODE result =
      com__err_getcache(context, errhan, erridx->errtag, erridx->errnum, &entry);
  if (result == CS_SUCCEED)
    *errstr = entry->errmsg;
  return COMN_TRACE(result);
}

CS_RETCODE com_err_sqlstate(CsContext *context, CS_ERRHAN *errhan, CS_MSGNUM errnum,
                            CS_INT errsection, CS_CHAR *buffer, CS_INT buflen,
                            CS_INT *outlen) noexcept {
  COMN_CHECK_PTR(buffer, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(outlen, COMN_TRACE(CS_FAIL));
  CsErrorCache *entry = nullptr;
  const CS_RETCODE result = com__err_getcache(context, errhan, errsection, errnum, &entry);
  if (result != CS_SUCCEED)
    return COMN_TRACE(result);
  const size_t length = std::strlen(entry->errcode);
  *outlen = static_cast<CS_INT>(length);
  if (*outlen > buflen)
    return COMN_TRACE(CS_FAIL);
  const auto size = static_cast<size_t>(buflen);
  std::memcpy(buffer, entry->errcode, length);
  std::memset(buffer + length, 0, size - length);
  return COMN_TRACE(CS_SUCCEED);
}
