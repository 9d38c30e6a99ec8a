// Memory as a program has it that works on one picture after the other: blocks that are given back are kept for the next
// request of the same size. Else the system takes them and hands out fresh pages, which cost more than the work on them.
// Linked into the programs that measure warm; skeleton_once goes without it.
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t kLeastKept = 1024;  // bytes; smaller blocks stay with the program anyway

// In front of every block; as large as the alignment of what follows it.
struct alignas(16) Block {
    std::size_t nBytes;
    Block* pNext;
};

// Blocks of one size.
struct Shelf {
    std::size_t nBytes = 0;  // 0: a shelf not used yet
    Block* pFirst = nullptr;
};

// Sizes beyond the last shelf are not kept.
constinit std::array<Shelf, 64> g_shelves;
constinit std::atomic_flag g_bBusy;  // a mutex may not be there yet when the first block is asked for

class Lock {
public:
    Lock() noexcept {
        while (g_bBusy.test_and_set(std::memory_order_acquire)) {
        }
    }
    ~Lock() { g_bBusy.clear(std::memory_order_release); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
};

Shelf* ShelfFor(std::size_t nBytes) noexcept {
    for (Shelf& shelf : g_shelves) {
        if (shelf.nBytes == nBytes || shelf.nBytes == 0) {
            shelf.nBytes = nBytes;
            return &shelf;
        }
    }
    return nullptr;
}

Block* TakeKept(std::size_t nBytes) noexcept {
    const Lock lock;
    Shelf* pShelf = ShelfFor(nBytes);
    Block* pBlock = pShelf != nullptr ? pShelf->pFirst : nullptr;
    if (pBlock != nullptr) {
        pShelf->pFirst = pBlock->pNext;
    }
    return pBlock;
}

bool Keep(Block* pBlock) noexcept {
    const Lock lock;
    Shelf* pShelf = ShelfFor(pBlock->nBytes);
    if (pShelf == nullptr) {
        return false;
    }
    pBlock->pNext = pShelf->pFirst;
    pShelf->pFirst = pBlock;
    return true;
}

}  // namespace

void* operator new(std::size_t nBytes) {
    Block* pBlock = nBytes >= kLeastKept ? TakeKept(nBytes) : nullptr;
    if (pBlock == nullptr) {
        pBlock = static_cast<Block*>(std::malloc(sizeof(Block) + nBytes));
        if (pBlock == nullptr) {
            throw std::bad_alloc();
        }
        pBlock->nBytes = nBytes;
    }
    return pBlock + 1;
}

void operator delete(void* p) noexcept {
    if (p == nullptr) {
        return;
    }
    Block* pBlock = static_cast<Block*>(p) - 1;
    if (pBlock->nBytes < kLeastKept || !Keep(pBlock)) {
        std::free(pBlock);
    }
}

void operator delete(void* p, std::size_t /*nBytes*/) noexcept {
    ::operator delete(p);
}
