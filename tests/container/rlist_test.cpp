#include "container/rlist_model.h"

#include <gtest/gtest.h>

TEST(Rlist, EqualsItsModel) { EXPECT_TRUE(on_random_inputs(rlist_equals_model)); }
