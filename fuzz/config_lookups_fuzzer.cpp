// Sequences of look-ups, walks, drops and opens on files whose sections include one another as the input
// says. Every walk ends, no answer is outside of what is told, and no handle or cursor is lost.
#include <array>
#include <string>

#include "fuzz_config.h"

namespace {

using zrvfuzz::require;

constexpr size_t names = 6;

// A section in each byte, up to a byte of 255: its name, and what it includes and has.
std::string make_file(const uint8_t *&data, size_t &size) {
  std::string file;
  for (int sections = 0; sections < 12 && size > 0 && *data != 255; ++sections, ++data, --size) {
    file += "[s" + std::to_string(*data % names) + "]\n";
    for (size_t bit = 0; bit < 3; ++bit)
      if ((*data >> (5 + bit) & 1) != 0)
        file += "include = s" + std::to_string((*data + bit) % names) + "\n";
    for (size_t entry = 0; entry < *data % 4U; ++entry)
      file += "e" + std::to_string(entry % 2) + " = v" + std::to_string(*data) + "\n";
  }
  if (size > 0) {
    ++data;
    --size;
  }
  return file;
}

struct Slot {
  CS_CONFIG *cfg = nullptr;
  CS_VOID *next = nullptr;
  std::string section, entry; // of the walk
};

void step(Slot &slot, uint8_t choice, bool walks) {
  if (!walks || slot.next == nullptr) {
    const size_t section = choice % (names + 1); // one more than there are
    slot.section = "s" + std::to_string(section);
    slot.entry = "e" + std::to_string(choice / 16 % 3);
  }
  char value[3];
  CS_INT length = -1;
  const CS_RETCODE result =
      comn_get_cfg(slot.cfg, slot.section.data(), CS_LEN_NULLTERM, slot.entry.data(),
                   CS_LEN_NULLTERM, walks ? &slot.next : nullptr, value, sizeof value, &length);
  const bool has_value = result == CS_SUCCEED || result == CS_CONV_TRUNCATED;
  require(has_value || result == CS_END_DATA || result == CS_FAIL);
  require(!has_value || (value[0] == 'v' && (result == CS_SUCCEED) == (length <= 3)));
  if (walks)
    require(has_value == (slot.next != nullptr));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static zrvfuzz::ConfigWorld world;
  std::memset(static_cast<void *>(&Application_global), 0, sizeof Application_global);
  const std::string file = make_file(data, size);
  world.write(reinterpret_cast<const uint8_t *>(file.data()), file.size());
  std::array<Slot, 4> slots;
  for (; size > 1; data += 2, size -= 2) {
    Slot &slot = slots[data[0] % slots.size()];
    const uint8_t action = data[0] / slots.size() % 8;
    if (slot.cfg == nullptr) {
      slot.cfg = world.open(action % 2 == 0);
      require(slot.cfg != nullptr);
    } else if (action < 5) {
      step(slot, data[1], action > 0);
    } else if (action == 5) {
      comn_nextdrop_cfg(slot.cfg, slot.next);
      slot.next = nullptr;
    } else {
      // Handles of the same file lose it with a forced drop, and their cursors with it.
      const CS_CFGCHAIN *const chain = slot.cfg->cfg_chain;
      const CS_INT option = action == 6 ? COM_CFG_DROP_NORMAL : COM_CFG_DROP_FORCE;
      const CS_RETCODE result = comn_drop_cfg(slot.cfg, option);
      require((result == CS_SUCCEED) == (chain != nullptr));
      slot = {};
      for (Slot &other : slots)
        if (other.cfg != nullptr && other.cfg->cfg_chain == nullptr)
          other.next = nullptr;
    }
  }
  for (Slot &slot : slots)
    if (slot.cfg != nullptr) {
      // To the end of the walk, which there is.
      for (int i = 0; slot.next != nullptr; ++i) {
        require(i < 100'000);
        step(slot, 0, true);
      }
      comn_drop_cfg(slot.cfg, COM_CFG_DROP_NORMAL);
    }
  return 0;
}
