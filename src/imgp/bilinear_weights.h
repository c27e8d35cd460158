// The initialiser of the 256-byte weight tables: for the horizontal fraction a and the vertical
// fraction b in eighths, four bytes at 32 a + 4 b: upper-left, upper-right, lower-left,
// lower-right. A macro, for an array cannot be initialised by a function that yields one.
#ifndef TAVU_IMGP_BILINEAR_WEIGHTS_H
#define TAVU_IMGP_BILINEAR_WEIGHTS_H

#define TAVU_WEIGHT_GROUP(a, b) (8 - (a)) * (8 - (b)), (a) * (8 - (b)), (8 - (a)) * (b), (a) * (b)
#define TAVU_WEIGHT_COLUMN(a)                                                      \
    TAVU_WEIGHT_GROUP(a, 0), TAVU_WEIGHT_GROUP(a, 1), TAVU_WEIGHT_GROUP(a, 2),     \
        TAVU_WEIGHT_GROUP(a, 3), TAVU_WEIGHT_GROUP(a, 4), TAVU_WEIGHT_GROUP(a, 5), \
        TAVU_WEIGHT_GROUP(a, 6), TAVU_WEIGHT_GROUP(a, 7)
#define TAVU_WEIGHTS                                                                            \
    TAVU_WEIGHT_COLUMN(0), TAVU_WEIGHT_COLUMN(1), TAVU_WEIGHT_COLUMN(2), TAVU_WEIGHT_COLUMN(3), \
        TAVU_WEIGHT_COLUMN(4), TAVU_WEIGHT_COLUMN(5), TAVU_WEIGHT_COLUMN(6), TAVU_WEIGHT_COLUMN(7)

#endif
