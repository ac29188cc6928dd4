// Pools under any sequence of operations. The input is a program: a strategy and its sizes, then
// operations of three bytes. Every allocation is filled with a pattern of its own, which must still
// be there when it goes; every region must come back.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <set>
#include <vector>

#include "fuzz_input.h"
#include "zrvcomn/mmpriv.h"

using zrvfuzz::Input;
using zrvfuzz::require;

namespace {

struct Source {
  std::set<void *> regions;
  unsigned countdown = 0;

  static CS_VOID *take(MM_HANDLE *, CS_VOID *param, CS_UINT size) {
    auto *const self = static_cast<Source *>(param);
    if (size > 1U << 24 || (self->countdown != 0 && --self->countdown == 0))
      return nullptr;
    return *self->regions.insert(std::malloc(size)).first;
  }
  static void give_back(MM_HANDLE *, CS_VOID *param, CS_VOID *region) {
    require(static_cast<Source *>(param)->regions.erase(region) == 1);
    std::free(region);
  }
};

// The bytes 0 to 255 over and over, and as many zeroes; no allocation is larger.
struct Patterns {
  static constexpr std::size_t largest = 1 << 16;
  unsigned char ramp[largest + 256];
  unsigned char zeroes[largest] = {};
  constexpr Patterns() : ramp() {
    for (std::size_t i = 0; i < sizeof ramp; ++i)
      ramp[i] = static_cast<unsigned char>(i);
  }
};
const Patterns patterns;

struct Block {
  MM_HANDLE *pool;
  unsigned char *at;
  CS_UINT size;
  unsigned char pattern;

  void fill() const { std::memcpy(at, patterns.ramp + pattern, size); }
  bool is_filled(CS_UINT count) const {
    return std::memcmp(at, patterns.ramp + pattern, count) == 0;
  }
};

void set(MM_HANDLE *pool, CS_INT property, CS_VOID *value) {
  require(comn_mmproperty(pool, MM_ACTION_SET, property, value, 0, nullptr) == CS_SUCCEED);
}

// Bytes of a buddy allocation that are the caller's: a reallocation in place may promise one word
// more.
CS_UINT payload_of(const void *block) {
  CS_UINT header;
  std::memcpy(&header, static_cast<const char *>(block) - sizeof(void *), sizeof header);
  if ((header & MM_BUDDY_OVERSIZE) != 0)
    return header & ~MM_BUDDY_OVERSIZE;
  const CS_UINT order = (header & MM_BUDDY_TOPORDER) != 0 ? 16 : header & MM_BUDDY_ORDER;
  return static_cast<CS_UINT>((4 * sizeof(void *)) << order) - static_cast<CS_UINT>(sizeof(void *));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input input(data, size);
  Source source;
  alignas(void *) unsigned char storage[sizeof(MmPoolHead) + sizeof(MM_HANDLE)];
  auto *pool = reinterpret_cast<MM_HANDLE *>(storage);
  require(comn_mmmanage(nullptr, 0, &pool) == CS_SUCCEED);
  set(pool, MM_PROP_SBREAK, reinterpret_cast<CS_VOID *>(&Source::take));
  set(pool, MM_PROP_UNSBREAK, reinterpret_cast<CS_VOID *>(&Source::give_back));
  set(pool, MM_PROP_PARAM, &source);
  const CS_INT types[] = {MM_POOL_BUDDY, MM_POOL_UNIFORM, MM_POOL_ALLOCONLY};
  CS_INT type = types[input.byte() % 3];
  CS_INT blocksize = static_cast<CS_INT>(1 + input.word() * (1 + input.byte()));
  CS_INT chunksize = static_cast<CS_INT>(1 + input.word());
  set(pool, MM_PROP_POOLTYPE, &type);
  set(pool, MM_PROP_BLOCKSIZE, &blocksize);
  set(pool, MM_PROP_CHUNKSIZE, &chunksize);

  std::vector<MM_HANDLE *> pools{pool};
  std::vector<Block> live;
  while (!input.is_empty()) {
    const unsigned operation = input.byte() % 8;
    const unsigned argument = input.word();
    MM_HANDLE *const handle = pools[argument % pools.size()];
    switch (operation) {
    case 0: // another sub-pool, of any type
      if (pools.size() < 6) {
        MM_HANDLE *made = handle;
        if (com___subpool(handle, static_cast<CS_INT>(argument), &made) == CS_SUCCEED) {
          pools.push_back(made);
          type = types[input.byte() % 3];
          set(made, MM_PROP_POOLTYPE, &type);
        }
      }
      break;
    case 1: { // a sub-pool goes, with what it holds
      const CS_RETCODE expected = handle->mmh_child != nullptr ? CS_BUSY : CS_SUCCEED;
      if (handle == pool)
        break;
      std::erase_if(live, [&](const Block &block) {
        require(block.is_filled(block.size));
        return expected == CS_SUCCEED && block.pool == handle;
      });
      require(comn_mmdrop(handle, MM_DROP_NORMAL) == expected);
      if (expected == CS_SUCCEED)
        std::erase(pools, handle);
      break;
    }
    case 2: // the next breaks fail
      source.countdown = argument % 4;
      break;
    case 3: // release
    case 4: // resize
      if (!live.empty()) {
        Block &block = live[argument % live.size()];
        require(block.is_filled(block.size));
        const CS_INT strategy = block.pool->mmh_type;
        if (operation == 3) {
          // An empty allocation of an alloc-only pool may lie at the end of its region.
          if (strategy == MM_POOL_ALLOCONLY && block.size == 0)
            break;
          require(comn_mmfree(block.pool, block.at) ==
                  (strategy == MM_POOL_ALLOCONLY ? CS_FAIL : CS_SUCCEED));
          if (strategy != MM_POOL_ALLOCONLY) {
            block = live.back();
            live.pop_back();
          }
          break;
        }
        const CS_UINT wanted = input.word();
        CS_VOID *moved = block.at;
        const CS_RETCODE result = comn_mmrealloc(block.pool, wanted, &moved);
        if (result != CS_SUCCEED) {
          require(moved == block.at && block.is_filled(block.size));
          break;
        }
        require(strategy == MM_POOL_BUDDY);
        block.at = static_cast<unsigned char *>(moved);
        require(block.is_filled(std::min(block.size, wanted)));
        block.size = std::min(wanted, payload_of(moved));
        block.fill();
      }
      break;
    default: { // allocate
      CS_VOID *block = nullptr;
      // A uniform pool refuses any other size than the first.
      const CS_UINT wanted = operation == 5 ? argument % 64 : argument;
      const CS_RETCODE result = comn_mmalloc(handle, wanted, &block);
      if (result != CS_SUCCEED) {
        require(block == nullptr);
        break;
      }
      require(std::memcmp(block, patterns.zeroes, wanted) == 0);
      live.push_back({handle, static_cast<unsigned char *>(block), wanted,
                      static_cast<unsigned char>(input.byte())});
      live.back().fill();
      break;
    }
    }
  }
  for (const Block &block : live)
    require(block.is_filled(block.size));
  require(comn_mmdrop(pools.back(), MM_DROP_FORCE) == CS_SUCCEED);
  require(source.regions.empty());
  return 0;
}
