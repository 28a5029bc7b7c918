// How much memory a piece of code holds at most. Counts in builds with AddressSanitizer, where the allocator can be
// watched; elsewhere nothing is counted and peak() is 0.
#pragma once

#include <QtGlobal>

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
// Part of every sanitizer's runtime; not every compiler ships the header for it.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void *, std::size_t),
                                                         void (*)(const volatile void *));
extern "C" std::size_t __sanitizer_get_allocated_size(const volatile void *);
#endif

class HeapWatch
{
public:
    HeapWatch()
    {
#if defined(__SANITIZE_ADDRESS__)
        static const int installed = __sanitizer_install_malloc_and_free_hooks(&HeapWatch::taken, &HeapWatch::given);
        Q_UNUSED(installed)
#endif
        held = 0;
        highest = 0;
        counting = true;
    }
    ~HeapWatch()
    {
        counting = false;
    }
    Q_DISABLE_COPY_MOVE(HeapWatch)

    static qint64 peak()
    {
        return highest;
    }

private:
    inline static thread_local bool counting = false;
    inline static thread_local qint64 held = 0;
    inline static thread_local qint64 highest = 0;
#if defined(__SANITIZE_ADDRESS__)
    static void taken(const volatile void *, std::size_t size)
    {
        if (counting) {
            held += qint64(size);
            highest = qMax(highest, held);
        }
    }
    static void given(const volatile void *block)
    {
        if (counting && block != nullptr) {
            held -= qint64(__sanitizer_get_allocated_size(block));
        }
    }
#endif
};
