// Any bytes as a configuration file: it is read as the slow reader of the tests reads it, section by
// section and value by value, with as many messages.
#include "config_reference.h"
#include "fuzz_config.h"
#include "test_charset.h"

namespace {

using zrvfuzz::require;

void check_values(CS_CONFIG *cfg, const zrvtest::ConfigSection &section) {
  for (const auto &[entry, values] : section.entries) {
    CS_VOID *next = nullptr;
    for (const std::string &value : values) {
      std::string buffer(value.size(), '\0');
      CS_INT length = -1;
      require(comn_get_cfg(cfg, const_cast<char *>(section.name.data()),
                           static_cast<CS_INT>(section.name.size()),
                           const_cast<char *>(entry.data()), static_cast<CS_INT>(entry.size()),
                           &next, buffer.data(), static_cast<CS_INT>(buffer.size()),
                           &length) == CS_SUCCEED);
      require(buffer == value && length == static_cast<CS_INT>(value.size()));
    }
    require(comn_nextdrop_cfg(cfg, next) == CS_SUCCEED);
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  // The slow reader is slow.
  if (size == 0 || size > 4000)
    return 0;
  static zrvtest::TestCharset sets[] = {zrvtest::TestCharset::four_byte(),
                                        zrvtest::TestCharset::utf8()};
  CS_ATTRIB *const set = data[0] < 2 ? sets[data[0]].get() : com_get_charattrib();
  static zrvfuzz::ConfigWorld world;
  world.set_charset(set);
  world.write(data + 1, size - 1);
  const std::string bytes(reinterpret_cast<const char *>(data + 1), size - 1);
  const zrvtest::ConfigFile expected = zrvtest::read_config(bytes, set);
  world.count() = 0;
  CS_CONFIG *const cfg = world.open(false);
  require((cfg != nullptr) == expected.loaded);
  require(world.count() == expected.messages.size());
  if (cfg == nullptr)
    return 0;
  for (auto section = expected.sections.rbegin(); section != expected.sections.rend(); ++section) {
    bool is_hidden = false;
    for (auto later = expected.sections.rbegin(); later != section; ++later)
      is_hidden |= later->name == section->name;
    if (!is_hidden)
      check_values(cfg, *section);
  }
  return comn_drop_cfg(cfg, COM_CFG_DROP_NORMAL) != CS_SUCCEED;
}
