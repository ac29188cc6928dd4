// zrvcomn recode: a filter between character sets.
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "arguments.h"
#include "character_names.h"
#include "charset_names.h"
#include "output.h"
#include "recoder.h"
#include "subcommand.h"
#include "visible.h"

namespace {

using namespace zrvtool;

struct Options {
  std::string from, to, file = "-", on_loss = "substitute", substitute = "?";
};

// A file or standard input, in blocks.
class ByteInput {
public:
  explicit ByteInput(const std::string &path) : name(path == "-" ? "standard input" : path) {
    if (path != "-")
      descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
      throw UsageError("cannot open " + in_quotes(path) + ": " + std::strerror(errno));
    struct stat status;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode))
      total = static_cast<uint64_t>(status.st_size);
  }
  ~ByteInput() {
    if (descriptor > 0)
      close(descriptor);
  }
  ByteInput(const ByteInput &) = delete;
  ByteInput &operator=(const ByteInput &) = delete;

  // Empty at the end.
  std::string_view next() {
    ssize_t length;
    do
      length = read(descriptor, block.data(), block.size());
    while (length < 0 && errno == EINTR);
    if (length < 0)
      throw StreamError("cannot read " + name + ": " + std::strerror(errno));
    done += static_cast<uint64_t>(length);
    return {block.data(), static_cast<size_t>(length)};
  }

  const std::string name;
  uint64_t done = 0, total = 0; // bytes; no total where it is not known

private:
  int descriptor = 0;
  std::string block = std::string(65536, '\0');
};

// "file:3:14: byte 52: 0xe282ac: U+20AC EURO SIGN is not in iso_1"
std::string message_of(const Loss &loss, const Options &options, const std::string &file) {
  std::string text;
  append_visible(text, file);
  text += ":" + std::to_string(loss.line) + ":" + std::to_string(loss.column) + ": byte " +
          std::to_string(loss.offset) + ": 0x";
  std::string hex;
  append_hex(hex, loss.bytes);
  text += hex;
  if (loss.is_invalid)
    return text + ": no character of " + options.from;
  char number[16];
  std::snprintf(number, sizeof number, "U+%04X", static_cast<unsigned>(loss.character));
  const std::string name = character_name(loss.character);
  return text + ": " + number + (name.empty() ? "" : " " + name) + " is not in " + options.to;
}

int recode(const Options &options) {
  const CharsetName from = find_charset(options.from), to = find_charset(options.to);
  ByteInput input(options.file);
  Progress progress(isatty(STDERR_FILENO) != 0 && isatty(STDOUT_FILENO) == 0);
  Writer out(STDOUT_FILENO);
  uint64_t losses = 0;
  const bool stops = options.on_loss == "stop";
  Recoder recoder(from.converter, options.from, to.converter, options.to, options.substitute,
                  [&](const Loss &loss) {
                    ++losses;
                    if (options.on_loss != "substitute") {
                      progress.clear();
                      std::cerr << "zrvcomn recode: " << message_of(loss, options, input.name)
                                << "\n";
                    }
                    return !stops;
                  });
  bool is_going = true;
  while (is_going) {
    const std::string_view block = input.next();
    is_going = recoder.convert(block, block.empty(), out.text) && !block.empty();
    out.flush();
    progress.show_bytes(input.done, input.total);
  }
  progress.clear();
  if (losses > 0 && !stops)
    std::cerr << "zrvcomn recode: " << losses
              << (losses == 1 ? " character was" : " characters were") << " replaced\n";
  return losses == 0 ? exit_success : exit_failure;
}

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  app.add_option("--from", options->from, "The character set of the text")
      ->required()
      ->type_name("SET");
  app.add_option("--to", options->to, "The character set that is wanted")
      ->required()
      ->type_name("SET");
  add_choice(app, "--on-loss", options->on_loss, "WAY", {"substitute", "report", "stop"},
             "What becomes of a character without a counterpart, and of bytes that are no "
             "character: replaced and counted, also reported one by one, or the end (substitute)");
  app.add_option("--substitute", options->substitute, "What replaces them, in UTF-8 (?)")
      ->type_name("TEXT");
  CLI::Option *const file =
      app.add_option("file", options->file, "The text; without it, and for '-', standard input")
          ->type_name("FILE");
  app.footer("Examples:\n"
             "  zrvcomn recode --from cp1252 --to utf8 letter.txt > letter.utf8\n"
             "  zrvcomn recode --from utf8 --to iso_1 --on-loss report < text > /dev/null\n"
             "\nExit codes: 0 everything was converted, 1 something was lost, 2 wrong usage.");
  return [options, file](const Words &more) {
    take_word(file, options->file, more, "file");
    return recode(*options);
  };
}

const Subcommand registration("recode", "Convert text from one character set into another", add);

} // namespace
