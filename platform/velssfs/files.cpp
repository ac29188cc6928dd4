#include "files.h"

#include <algorithm>
#include <cerrno>
#include <ctime>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "texts.h"

namespace velssfs {

namespace {

// A leftover of a process that was killed is overwritten by the next one that writes.
constexpr char replacement_name[] = "replacement";

template <class Call>
auto retry(Call call) noexcept {
  decltype(call()) result;
  do
    result = call();
  while (result < 0 && errno == EINTR);
  return result;
}

int write_all(const Descriptor &file, const Bytes &content) noexcept {
  for (size_t done = 0; done < content.size();) {
    const ssize_t count =
        retry([&] { return write(file.get(), content.data() + done, content.size() - done); });
    if (count < 0)
      return errno;
    done += static_cast<size_t>(count);
  }
  return 0;
}

// Creates a file that nobody else has, and fills it down to the disk.
int write_new(int directory, const char *name, const Bytes &content) noexcept {
  constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
  Descriptor file;
  int error = file.open(directory, name, flags, S_IRUSR | S_IWUSR);
  if (error == EEXIST) {
    unlinkat(directory, name, 0);
    error = file.open(directory, name, flags, S_IRUSR | S_IWUSR);
  }
  // The process may have a mask that takes rights from the owner.
  if (error == 0 && fchmod(file.get(), S_IRUSR | S_IWUSR) != 0)
    error = errno;
  if (error == 0)
    error = write_all(file, content);
  if (error == 0 && fsync(file.get()) != 0)
    error = errno;
  const int close_error = file.close();
  return error != 0 ? error : close_error;
}

int synchronise(const char *path) noexcept {
  Descriptor directory;
  const int error = directory.open(AT_FDCWD, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  // Who may write to a directory need not have the right to read it.
  if (error == EACCES || error == EPERM)
    return 0;
  if (error != 0)
    return error;
  return fsync(directory.get()) == 0 ? 0 : errno;
}

// Synchronises the directory that the last step of a path leads from. `slash` stands before that step,
// or is the begin of the path.
int synchronise_parent(char *path, char *slash) noexcept {
  if (slash == path)
    return synchronise(*path == '/' ? "/" : ".");
  *slash = '\0';
  const int error = synchronise(path);
  *slash = '/';
  return error;
}

} // namespace

Descriptor::~Descriptor() {
  close();
}

int Descriptor::open(int directory, const char *path, int flags, mode_t mode) noexcept {
  number = static_cast<int>(retry([&] { return openat(directory, path, flags, mode); }));
  return number < 0 ? errno : 0;
}

int Descriptor::close() noexcept {
  if (number < 0)
    return 0;
  const int result = ::close(number);
  number = -1;
  // The descriptor is gone also when a signal came.
  return result == 0 || errno == EINTR ? 0 : errno;
}

int make_directory(const char *path) noexcept {
  char copy[VELSSFS_MAX_DIRECTORY + 1];
  const size_t length = std::strlen(path);
  std::memcpy(copy, path, length + 1);
  char *last_slash = copy;
  for (char *at = copy + 1;; ++at) {
    if (*at != '/' && *at != '\0')
      continue;
    const char after = *at;
    *at = '\0';
    const int error = mkdir(copy, S_IRWXU) == 0 ? 0 : errno;
    // What is there may be in a directory that is not ours to write to.
    if (error != 0 && error != EEXIST && access(copy, F_OK) != 0)
      return error;
    if (error == 0)
      if (const int failure = synchronise_parent(copy, last_slash)) {
        rmdir(copy); // so that nobody takes it for one that lasts
        return failure;
      }
    *at = after;
    if (after == '\0')
      return 0;
    last_slash = at;
  }
}

int read_whole(const char *path, size_t most, Bytes &content, mode_t &mode) noexcept {
  Descriptor file;
  // A pipe that somebody put there must not be waited for.
  if (const int error = file.open(AT_FDCWD, path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY))
    return error == ENXIO ? EFBIG : error;
  struct stat status;
  if (fstat(file.get(), &status) != 0)
    return errno;
  if (!S_ISREG(status.st_mode) || status.st_size > static_cast<off_t>(most))
    return EFBIG;
  mode = status.st_mode;
  if (!content.renew(static_cast<size_t>(status.st_size)))
    return ENOMEM;
  size_t done = 0;
  while (done < content.size()) {
    const ssize_t count =
        retry([&] { return read(file.get(), content.data() + done, content.size() - done); });
    if (count < 0)
      return errno;
    if (count == 0)
      break;
    done += static_cast<size_t>(count);
  }
  content.cut(done);
  return 0;
}

int replace_file(int directory, const char *name, const Bytes &content) noexcept {
  int error = write_new(directory, replacement_name, content);
  if (error == 0 && renameat(directory, replacement_name, directory, name) != 0)
    error = errno;
  if (error != 0)
    unlinkat(directory, replacement_name, 0);
  return error;
}

int lock_file(const Descriptor &file, int operation, int milliseconds) noexcept {
  constexpr long long million = 1000000;
  constexpr int longest_pause = 20;
  for (int waited = 0, pause = 1;; waited += pause, pause = std::min(2 * pause, longest_pause)) {
    if (retry([&] { return flock(file.get(), operation | LOCK_NB); }) == 0)
      return 0;
    if (errno != EWOULDBLOCK)
      return errno;
    if (waited >= milliseconds)
      return ETIMEDOUT;
    const timespec time{0, static_cast<long>(pause * million)};
    nanosleep(&time, nullptr);
  }
}

int list_record_keys(int directory, const char *prefix, Bytes &names, size_t &length,
                     size_t &count) noexcept {
  length = count = 0;
  // A stream takes its descriptor over, and the caller goes on using this one.
  Descriptor own;
  if (const int error = own.open(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    return error;
  DIR *const stream = fdopendir(own.get());
  if (stream == nullptr)
    return errno;
  own.forget();
  int error = 0;
  for (;;) {
    errno = 0;
    const dirent *const entry = readdir(stream);
    if (entry == nullptr) {
      error = errno;
      break;
    }
    char key[VELSSFS_MAX_KEY + 1];
    if (!key_of_file(entry->d_name, key) || std::strncmp(key, prefix, std::strlen(prefix)) != 0)
      continue;
    const size_t size = std::strlen(key) + 1;
    if (names.size() - length < size && !names.grow(2 * names.size() + sizeof key)) {
      error = ENOMEM;
      break;
    }
    std::memcpy(names.data() + length, key, size);
    length += size;
    ++count;
  }
  closedir(stream);
  return error;
}

} // namespace velssfs
