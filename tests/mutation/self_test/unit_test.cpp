#include <gtest/gtest.h>

#include "core/answer.h"

TEST(Half, OfTheAnswer)
{
    EXPECT_EQ(Half(Answer()), 21);
}
