#include "store.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velssfs {

namespace {

constexpr char key_file[] = "key", lock_name[] = "lock";

// How often a reader follows a master key that changes under its hands.
constexpr int most_changes = 100;

// What RSecSSFsSetConfiguration set; empty for the default.
char configured[VELSSFS_MAX_DIRECTORY + 1];

// The length of the path without slashes at its end; 0 where there is none or it is too long.
template <size_t size>
size_t print_path(char (&path)[size], const char *above, const char *below) noexcept {
  const int printed = std::snprintf(path, size, "%s%s", above, below);
  if (printed < 0 || printed > VELSSFS_MAX_DIRECTORY)
    return 0;
  auto length = static_cast<size_t>(printed);
  while (length > 1 && path[length - 1] == '/')
    path[--length] = '\0';
  return length;
}

template <size_t size>
size_t default_path(char (&path)[size]) noexcept {
  if (const char *const state = secure_getenv("XDG_STATE_HOME"); state != nullptr && *state == '/')
    return print_path(path, state, "/zrvcomn/secstore");
  constexpr char below_home[] = "/.local/state/zrvcomn/secstore";
  if (const char *const home = secure_getenv("HOME"); home != nullptr && *home == '/')
    return print_path(path, home, below_home);
  char room[4096];
  passwd entry, *found = nullptr;
  if (getpwuid_r(geteuid(), &entry, room, sizeof room, &found) != 0 || found == nullptr)
    return 0;
  return print_path(path, found->pw_dir, below_home);
}

} // namespace

bool configure(const char *directory) noexcept {
  const size_t length = directory == nullptr ? 0 : std::strlen(directory);
  if (length > VELSSFS_MAX_DIRECTORY)
    return false;
  if (length > 0)
    std::memcpy(configured, directory, length);
  configured[length] = '\0';
  return true;
}

Store::Store() noexcept
    : path_length(configured[0] != '\0' ? print_path(path, configured, "") : default_path(path)) {}

Store::FilePath Store::path_of(const char *file) const noexcept {
  FilePath result;
  std::memcpy(result.text, path, path_length);
  result.text[path_length] = '/';
  std::strcpy(result.text + path_length + 1, file);
  return result;
}

RSEC_SSFS_RC Store::need_directory() noexcept {
  return path_length > 0
             ? RSEC_SSFS_RC_OK
             : report.fail(RSEC_SSFS_RC_ENVIRONMENT, "there is no home directory for the store");
}

RSEC_SSFS_RC Store::begin_write(Access &access, int milliseconds) noexcept {
  if (const RSEC_SSFS_RC code = need_directory())
    return code;
  constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
  int error = access.directory.open(AT_FDCWD, path, flags);
  if (error == ENOENT) {
    error = make_directory(path);
    if (error == 0)
      error = access.directory.open(AT_FDCWD, path, flags);
  }
  if (error != 0)
    return report.write_failed(error, path, nullptr);
  error = access.lock.open(access.directory.get(), lock_name,
                           O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
  if (error == 0)
    error = lock_file(access.lock, LOCK_EX, milliseconds);
  return error == 0 ? RSEC_SSFS_RC_OK : report.write_failed(error, path, lock_name);
}

RSEC_SSFS_RC Store::read_record(const char *key, Bytes &file, Record &record,
                                Opened &opened) noexcept {
  const FileName name = file_of_key(key);
  mode_t mode = 0;
  switch (const int error = read_whole(path_of(name.text).text, Sealer::largest_file, file, mode)) {
  case 0:
    opened = sealer.open(ring, key, file, record);
    return RSEC_SSFS_RC_OK;
  case ENOENT:
    return report.fail(RSEC_SSFS_RC_RECORD_NOT_FOUND, "%s/%s: there is no such record", path,
                       name.text);
  case EFBIG:
    return report.corrupt(path, name.text, "this is no record");
  default:
    return report.system_failed(error, path, name.text);
  }
}

RSEC_SSFS_RC Store::require_good(Opened opened, const char *key) noexcept {
  switch (opened) {
  case Opened::good:
    return RSEC_SSFS_RC_OK;
  case Opened::no_memory:
    return report.no_memory();
  case Opened::unknown_key:
    return report.corrupt(path, file_of_key(key).text,
                          "it is under a master key that the store does not have");
  case Opened::damaged:
    break;
  }
  return report.corrupt(path, file_of_key(key).text, "it is damaged, or belongs elsewhere");
}

RSEC_SSFS_RC Store::read_ring() noexcept {
  Bytes file;
  mode_t mode = 0;
  ring.count = 0;
  switch (const int error = read_whole(path_of(key_file).text, KeyRing::largest_file, file, mode)) {
  case 0:
    break;
  case ENOENT:
    return RSEC_SSFS_RC_OK;
  case EFBIG:
    return report.corrupt(path, key_file, "this is no key file");
  default:
    return report.system_failed(error, path, key_file);
  }
  if ((mode & (S_IRWXG | S_IRWXO)) != 0)
    return report.fail(RSEC_SSFS_RC_ENVIRONMENT,
                       "%s/%s: the mode %03o lets others use it; it must be 600", path, key_file,
                       static_cast<unsigned>(mode & (S_IRWXU | S_IRWXG | S_IRWXO)));
  return ring.read(file) ? RSEC_SSFS_RC_OK : report.corrupt(path, key_file, "it is damaged");
}

RSEC_SSFS_RC Store::get(const char *key, Bytes &file, Record &record) noexcept {
  if (const RSEC_SSFS_RC code = need_directory())
    return code;
  Byte missed_id[Key::id_size];
  for (int change = 0; change < most_changes; ++change) {
    Opened opened;
    if (const RSEC_SSFS_RC code = read_record(key, file, record, opened))
      return code;
    // Master keys that were read after the record lack its key only if that was given up meanwhile,
    // and then the record is under another one by now.
    if (opened != Opened::unknown_key ||
        (change > 0 && std::memcmp(Sealer::key_id(file), missed_id, sizeof missed_id) == 0))
      return require_good(opened, key);
    std::memcpy(missed_id, Sealer::key_id(file), sizeof missed_id);
    if (const RSEC_SSFS_RC code = read_ring())
      return code;
    if (ring.count == 0)
      return report.fail(RSEC_SSFS_RC_ENVIRONMENT, "%s/%s: the key file is missing", path,
                         key_file);
  }
  return report.fail(RSEC_SSFS_RC_CONCURRENT_UPDATE, "%s: the master key changes all the time",
                     path);
}

RSEC_SSFS_RC Store::write_file(const Access &access, const char *name,
                               const Bytes &content) noexcept {
  const int error = replace_file(access.directory.get(), name, content);
  return error == 0 ? RSEC_SSFS_RC_OK : report.write_failed(error, path, name);
}

RSEC_SSFS_RC Store::synchronise(const Access &access) noexcept {
  return fsync(access.directory.get()) == 0 ? RSEC_SSFS_RC_OK
                                            : report.write_failed(errno, path, nullptr);
}

RSEC_SSFS_RC Store::write_record(const Access &access, const char *key,
                                 const Record &record) noexcept {
  Bytes content;
  switch (sealer.seal(ring.current(), key, record, content)) {
  case Sealed::good:
    return write_file(access, file_of_key(key).text, content);
  case Sealed::no_random_bytes:
    return report.no_random_bytes();
  case Sealed::no_memory:
    break;
  }
  return report.no_memory();
}

RSEC_SSFS_RC Store::write_ring(const Access &access) noexcept {
  Bytes content;
  if (!ring.write(content))
    return report.no_memory();
  if (const RSEC_SSFS_RC code = write_file(access, key_file, content))
    return code;
  return synchronise(access);
}

RSEC_SSFS_RC Store::list_all(const Access &access, Keys &keys) noexcept {
  const int error =
      list_record_keys(access.directory.get(), "", keys.names, keys.length, keys.count);
  return error == 0 ? RSEC_SSFS_RC_OK : report.system_failed(error, path, nullptr);
}

RSEC_SSFS_RC Store::make_first_key(const Access &access) noexcept {
  Keys keys;
  if (const RSEC_SSFS_RC code = list_all(access, keys))
    return code;
  // A second key would hide that the first one is lost.
  if (keys.count > 0)
    return report.fail(RSEC_SSFS_RC_ENVIRONMENT, "%s/%s: the key file is missing", path, key_file);
  Key first;
  if (!draw(first.bytes, sizeof first.bytes))
    return report.no_random_bytes();
  if (!first.identify())
    return report.no_memory();
  ring.add(first);
  return write_ring(access);
}

RSEC_SSFS_RC Store::put(const char *key, const Record &record) noexcept {
  Access access;
  if (const RSEC_SSFS_RC code = begin_write(access, VELSSFS_LOCK_WAIT))
    return code;
  if (const RSEC_SSFS_RC code = read_ring())
    return code;
  if (ring.count == 0)
    if (const RSEC_SSFS_RC code = make_first_key(access))
      return code;
  if (const RSEC_SSFS_RC code = write_record(access, key, record))
    return code;
  return synchronise(access);
}

RSEC_SSFS_RC Store::remove(const char *key) noexcept {
  if (const RSEC_SSFS_RC code = need_directory())
    return code;
  const FileName name = file_of_key(key);
  Access access;
  // What is not there is not made in order to remove something from it.
  const bool is_there =
      faccessat(AT_FDCWD, path_of(name.text).text, F_OK, AT_SYMLINK_NOFOLLOW) == 0;
  if (is_there || errno != ENOENT) {
    if (const RSEC_SSFS_RC code = begin_write(access, VELSSFS_LOCK_WAIT))
      return code;
    if (unlinkat(access.directory.get(), name.text, 0) == 0)
      return synchronise(access);
    if (errno != ENOENT)
      return report.write_failed(errno, path, name.text);
  }
  return report.fail(RSEC_SSFS_RC_RECORD_NOT_FOUND, "%s/%s: there is no such record", path,
                     name.text);
}

RSEC_SSFS_RC Store::list(const char *prefix, Bytes &names, size_t &count) noexcept {
  if (const RSEC_SSFS_RC code = need_directory())
    return code;
  count = 0;
  Access access;
  int error = access.directory.open(AT_FDCWD, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (error == ENOENT)
    return RSEC_SSFS_RC_OK;
  if (error == 0)
    error = access.lock.open(access.directory.get(), lock_name, O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
  // Without a lock nobody has written yet; or the store was brought here by other means, and then
  // nobody writes yet.
  if (error == 0)
    error = lock_file(access.lock, LOCK_SH, VELSSFS_LOCK_WAIT);
  size_t length = 0;
  if (error == 0 || error == ENOENT)
    error = list_record_keys(access.directory.get(), prefix, names, length, count);
  return error == 0 ? RSEC_SSFS_RC_OK : report.system_failed(error, path, nullptr);
}

namespace {

// Calls an operation for each key until one fails.
template <class Operation>
RSEC_SSFS_RC for_each(const Bytes &names, size_t length, Operation operation) noexcept {
  const char *const begin = reinterpret_cast<const char *>(names.data());
  for (const char *key = begin; key < begin + length; key += std::strlen(key) + 1)
    if (const RSEC_SSFS_RC code = operation(key))
      return code;
  return RSEC_SSFS_RC_OK;
}

} // namespace

RSEC_SSFS_RC Store::check_records(const Keys &keys, bool is_key_lost) noexcept {
  return for_each(keys.names, keys.length, [&](const char *key) {
    Bytes file;
    Record record;
    Opened opened;
    if (const RSEC_SSFS_RC code = read_record(key, file, record, opened))
      return code;
    if (is_key_lost && opened == Opened::unknown_key)
      return report.fail(RSEC_SSFS_RC_INCORRECT_KEY,
                         "%s/%s: the record is under another master key", path,
                         file_of_key(key).text);
    return require_good(opened, key);
  });
}

// Moves the records that are still under the old master key to the current one, and then gives the old
// one up.
RSEC_SSFS_RC Store::give_up_old_key(const Access &access, const Keys &keys) noexcept {
  const RSEC_SSFS_RC code = for_each(keys.names, keys.length, [&](const char *key) {
    Bytes file;
    Record record;
    Opened opened;
    if (const RSEC_SSFS_RC failure = read_record(key, file, record, opened))
      return failure;
    if (const RSEC_SSFS_RC failure = require_good(opened, key))
      return failure;
    return ring.current().has_id(Sealer::key_id(file)) ? RSEC_SSFS_RC_OK
                                                       : write_record(access, key, record);
  });
  if (code != RSEC_SSFS_RC_OK)
    return code;
  // The records must have reached the disk before the old key goes.
  if (const RSEC_SSFS_RC failure = synchronise(access))
    return failure;
  ring.keep_current();
  return write_ring(access);
}

RSEC_SSFS_RC Store::change_key(const Key &wanted, int milliseconds) noexcept {
  Access access;
  Keys keys;
  if (const RSEC_SSFS_RC code = begin_write(access, milliseconds))
    return code;
  if (const RSEC_SSFS_RC code = read_ring())
    return code;
  if (const RSEC_SSFS_RC code = list_all(access, keys))
    return code;
  const bool is_key_lost = ring.count == 0;
  if (is_key_lost)
    ring.add(wanted);
  if (const RSEC_SSFS_RC code = check_records(keys, is_key_lost))
    return code;
  if (is_key_lost)
    return write_ring(access);
  // What an earlier change began.
  if (ring.count == KeyRing::most)
    if (const RSEC_SSFS_RC code = give_up_old_key(access, keys))
      return code;
  if (ring.current().has_id(wanted.id))
    return RSEC_SSFS_RC_OK;
  ring.add(wanted);
  if (const RSEC_SSFS_RC code = write_ring(access))
    return code;
  return give_up_old_key(access, keys);
}

} // namespace velssfs
