// What each step of the start of a context costs: the time, and the memory that it keeps until the end.
// Prints a table; docs/startup.md numbers the steps.
// usage: startup_cost [LOCALE]
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <vector>

#include "session.h"

namespace {

constexpr size_t runs = 51;
CS_CHAR default_locale[] = "de_DE.UTF-8";
CS_CHAR *locale_name = default_locale;

struct Step {
  const char *call;
  const char *what;
  bool (*run)(Session &session);
};

const Step steps[] = {
    {"com_appglobal_alloc", "the record of the process",
     [](Session &session) {
       return com_appglobal_alloc(&session.process, nullptr, COM_APPGLOBAL_STATIC) == CS_SUCCEED;
     }},
    {"comn_intl_load_globalid", "identifiers",
     [](Session &session) {
       CS_OID_TABLE *identifiers = nullptr;
       const CS_RETCODE status = comn_intl_load_globalid(&session.context, &identifiers);
       session.globals.ctxoids = identifiers;
       return status == CS_SUCCEED;
     }},
    {"comn_intl_init", "the set utf8 and its order",
     [](Session &session) {
       CS_CHAR file[1025];
       return comn_intl_init(&session.context, file, sizeof file) == CS_SUCCEED;
     }},
    {"comn_intl_load", "a locale, six categories",
     [](Session &session) { return load_locale(&session, locale_name) == CS_SUCCEED; }},
    {"com_conv_init", "the matrix of conversions",
     [](Session &session) { return com_conv_init(&session.context) == CS_SUCCEED; }},
    {"com_null_init", "default values",
     [](Session &session) { return com_null_init(&session.context) == CS_SUCCEED; }},
    {"com_errinit", "messages",
     [](Session &session) { return com_errinit(&session.context) == CS_SUCCEED; }},
};

size_t bytes_in_use = 0;

void *taken(void *block) {
  bytes_in_use += malloc_usable_size(block);
  return block;
}

void released(void *block) {
  bytes_in_use -= malloc_usable_size(block);
}

double microseconds(std::chrono::steady_clock::duration time) {
  return std::chrono::duration<double, std::micro>(time).count();
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

struct Cost {
  std::vector<double> times;
  size_t bytes = 0;
};

} // namespace

// The library takes its memory from these in place of libzrvintl's.
extern "C" {
void *comn_malloc(size_t size) noexcept {
  return taken(std::malloc(size));
}

void *comn_calloc(size_t count, size_t size) noexcept {
  return taken(std::calloc(count, size));
}

void *comn_realloc(void *block, size_t size) noexcept {
  const size_t old_size = malloc_usable_size(block);
  void *const resized = std::realloc(block, size);
  if (resized != nullptr)
    bytes_in_use -= old_size;
  return resized != nullptr ? taken(resized) : nullptr;
}

void comn_free(void *block) noexcept {
  released(block);
  std::free(block);
}
}

int main(int argc, char **argv) {
  if (argc > 1)
    locale_name = argv[1];
  using Clock = std::chrono::steady_clock;
  std::array<Cost, std::size(steps)> costs;
  Cost whole_end;
  Session session;
  start(&session, locale_name); // the first is not counted
  end(&session);
  for (size_t run = 0; run < runs; ++run) {
    session = {};
    session.context.ctxglobals = &session.globals;
    const size_t before_all = bytes_in_use;
    for (size_t i = 0; i < costs.size(); ++i) {
      const size_t before = bytes_in_use;
      const auto begin = Clock::now();
      if (!steps[i].run(session)) {
        std::fprintf(stderr, "startup_cost: %s failed\n", steps[i].call);
        end(&session);
        return EXIT_FAILURE;
      }
      costs[i].times.push_back(microseconds(Clock::now() - begin));
      costs[i].bytes = bytes_in_use - before;
    }
    const auto begin = Clock::now();
    end(&session);
    whole_end.times.push_back(microseconds(Clock::now() - begin));
    whole_end.bytes = bytes_in_use - before_all;
  }

  std::printf("| step | what | microseconds | bytes kept |\n|---|---|--:|--:|\n");
  size_t bytes = 0;
  double time = 0;
  for (size_t i = 0; i < costs.size(); ++i) {
    std::printf("| `%s` | %s | %.0f | %zu |\n", steps[i].call, steps[i].what,
                median(costs[i].times), costs[i].bytes);
    bytes += costs[i].bytes;
    time += median(costs[i].times);
  }
  std::printf("| all | | %.0f | %zu |\n", time, bytes);
  std::printf("| the end | | %.0f | %zu |\n", median(whole_end.times), whole_end.bytes);
}
