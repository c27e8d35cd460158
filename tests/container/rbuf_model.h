// What a ring buffer does, for the test and the fuzz target.
#ifndef TAVU_TESTS_CONTAINER_RBUF_MODEL_H
#define TAVU_TESTS_CONTAINER_RBUF_MODEL_H

#include <algorithm>
#include <cstring>

#include "memory.h"

// The rules over head, tail and size. Outcomes below 0 are refused.
struct RbufModel {
    int s;
    Bytes storage = Bytes(static_cast<size_t>(s));
    int h = 0, t = 0;

    bool full() const { return h == (t + s - 1) % s; }
    uint8_t &byte(int i) { return storage[static_cast<size_t>(i % s)]; }
    int put(const Bytes &src, int n) {
        const int room = s - h;
        const bool fits = h < t ? n < t - h : n - room < t || (t == 0 && n == room);
        if (full() || n < 0 || (!fits && (h < t || t == 0))) return 0;
        for (int i = 0; i < (fits ? n : room); i++) byte(h + i) = src[static_cast<size_t>(i)];
        if (fits) h = h < t || t == 0 || n < room ? h + n : n - room;
        return fits ? n : 0;
    }
    int skip_head(int n) {
        const int k = std::min(n, h < t ? t - 1 - h : s - h + t - 1);
        if (full() || k < 0) return 0;
        if (t != 0 || n < s - h) h = h < t || h + k < s ? h + k : h + k - s;
        return k;
    }
    int get(uint8_t *dst, int n) { return t > s ? 0 : skip_tail(n, dst); }
    int skip_tail(int n, uint8_t *dst = nullptr) {
        const int k = std::min(n, h < t ? s - t + h : h - t);
        if (k < 0) return 0;
        for (int i = 0; dst != nullptr && i < k; i++) dst[i] = byte(t + i);
        t = h >= t || t + k < s ? t + k : t + k - s;
        return k;
    }
    int line(uint8_t *dst, int from, int limit) {
        for (int i = 0; i < limit; i++) {
            dst[i] = byte(from + i);
            if (dst[i] == '\0') return 0;
            const int complete = i > 0 && dst[i - 1] == '\r';
            if (dst[i] != '\n') continue;
            memcpy(dst + i - complete, "\r\n", 2);
            return i + 2 - complete;
        }
        return 0;
    }
    int get_one_line(uint8_t *dst, int size) {
        const int piece = s - t;
        if (size < 0 || piece < 0) return 0;
        int n = line(dst, t, h < t ? piece : std::min(size - 1, h - t)), to = t + n;
        if (n == 0 && h < t && size > piece) {
            const bool split = storage.back() == '\r' && storage[0] == '\n';
            if (split) dst[piece] = '\n';
            to = split ? 1 : line(dst + piece, 0, std::min(size - piece, h));
            n = to == 0 ? 0 : piece + to + (split ? 1 : 0);
        }
        if (n == 0) return 0;
        dst[n] = 0;
        t = to;
        return n;
    }
};

#endif
