// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#if defined(__SSE__)
    #include <xmmintrin.h>
#endif

namespace larkspire
{

/** Denormals count as zero on this thread for as long as this lives; then it is as it was. Whoever runs the chain needs
    it: without it the decay of the filters ends in other bits and takes many times longer. Only x86 has the mode;
    elsewhere this does nothing. */
class ScopedFlushToZero
{
public:
#if defined(__SSE__)
    ScopedFlushToZero() : before (_mm_getcsr())
    {
        _mm_setcsr (before | resultsAndOperands);
    }
    ~ScopedFlushToZero()
    {
        _mm_setcsr (before);
    }
#else
    ScopedFlushToZero() {}
#endif

    ScopedFlushToZero (const ScopedFlushToZero&) = delete;
    ScopedFlushToZero& operator= (const ScopedFlushToZero&) = delete;

#if defined(__SSE__)
private:
    static constexpr unsigned int resultsAndOperands = 0x8040;
    const unsigned int before;
#endif
};

} // namespace larkspire
