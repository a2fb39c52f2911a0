#include "i18n/cpp/i18n_allocator.h"

#include <gtest/gtest.h>

#include <cstring>

#include "i18n/cpp/i18n_error_codes.h"

TEST(I18NAllocatorTest, AllocatesResizesAndFrees) {
    int error = 77;
    char* block = I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(nullptr, nullptr, 4, &error);
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(I18N_OK, error);
    std::memcpy(block, "abc", 4);
    block = I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(nullptr, block, 100000, nullptr);
    EXPECT_STREQ("abc", block);
    EXPECT_EQ(nullptr, I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(nullptr, block, -1, &error));
    EXPECT_EQ(I18N_ARGUMENT, error);
    EXPECT_EQ(nullptr, I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(nullptr, block, 0, &error));
    EXPECT_EQ(I18N_OK, error);
}
