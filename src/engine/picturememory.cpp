#include "picturememory.h"

#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace {

constexpr size_t mostSpares = 2; // a picture comes for each one that goes

struct Block {
    std::unique_ptr<uint8_t[]> data;
    int bytes;
};

} // namespace

struct PictureMemory::Spares {
    Spares() { blocks.reserve(mostSpares); } // to let go of memory must not need any

    void keep(Block block)
    {
        const std::lock_guard lock(mutex);
        if (blocks.size() < mostSpares) {
            blocks.push_back(std::move(block));
        }
    }

    // Null where there is none of that size; those of another one are of no use any more.
    std::unique_ptr<uint8_t[]> take(int bytes)
    {
        const std::lock_guard lock(mutex);
        while (!blocks.empty()) {
            Block block = std::move(blocks.back());
            blocks.pop_back();
            if (block.bytes == bytes) {
                return std::move(block.data);
            }
        }
        return nullptr;
    }

    std::mutex mutex;
    std::vector<Block> blocks; // guarded by `mutex`
};

PictureMemory::PictureMemory()
    : m_spares(std::make_shared<Spares>())
{
}

std::shared_ptr<uint8_t[]> PictureMemory::obtain(int bytes)
{
    std::unique_ptr<uint8_t[]> data = m_spares->take(bytes);
    if (!data) {
        // Not make_unique: that would clear what is overwritten at once.
        data.reset(new (std::nothrow) uint8_t[static_cast<size_t>(bytes)]);
    }
    if (!data) {
        return nullptr;
    }
    const auto giveBack = [bytes, home = std::weak_ptr(m_spares)](uint8_t* returned) {
        Block block{ std::unique_ptr<uint8_t[]>(returned), bytes };
        if (const auto spares = home.lock()) {
            spares->keep(std::move(block));
        }
    };
    return { data.release(), giveBack };
}

void PictureMemory::clear()
{
    const std::lock_guard lock(m_spares->mutex);
    m_spares->blocks.clear();
}
