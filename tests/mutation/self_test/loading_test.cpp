#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>

TEST(Library, Answers)
{
    const char* changed = std::getenv("KESTA_TEST_LIBRARY");
    void* library = dlopen(changed != nullptr ? changed : LIBRARY, RTLD_NOW);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto answer = reinterpret_cast<int (*)()>(dlsym(library, "Answer"));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    dlclose(library);
}
