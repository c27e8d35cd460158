/* A consumer's shared object, in C or C++: it contains libtavu.a and calls one routine. */
#include <tavu.h>

#ifdef __cplusplus
extern "C" int plugin_call(void);
#else
int plugin_call(void);
#endif

int plugin_call(void) {
    static uint8_t a[256], b[256];
    static int16_t residual[256];
    uint8_t *const src[4] = {a, a, a, a}, *const dst[4] = {b, b, b, b};
    const uint8_t *const rows[2] = {a, a};
    const int32_t stride[4] = {32, 32, 32, 32};
    (void)residual, (void)src, (void)dst, (void)rows, (void)stride;
    CALL;
    return 7;
}
