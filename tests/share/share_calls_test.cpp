// Share maps that another process cuts short at the worst moment: between two system calls of those
// that publish and attach them.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "camparam/share.h"
#include "share/share_fixture.h"

namespace {

// The call at which the object is cut short.
enum class moment { never, before_reading, before_writing, before_closing };
moment cut_at = moment::never;
std::string cut_object;
int cuts = 0;

void cut_if(moment now)
{
    if (now != cut_at)
        return;
    EXPECT_EQ(truncate(cut_object.c_str(), 0), 0);
    cuts++;
}

template <typename function> function *real(const char *name)
{
    return reinterpret_cast<function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

PARA_API ssize_t pread(int descriptor, void *bytes, size_t size, off_t offset)
{
    cut_if(moment::before_reading);
    return real<decltype(pread)>("pread")(descriptor, bytes, size, offset);
}

PARA_API ssize_t pwrite(int descriptor, const void *bytes, size_t size, off_t offset)
{
    cut_if(moment::before_writing);
    return real<decltype(pwrite)>("pwrite")(descriptor, bytes, size, offset);
}

PARA_API int close(int descriptor)
{
    cut_if(moment::before_closing);
    return real<decltype(close)>("close")(descriptor);
}

} // extern "C"

class ShareCalls : public testing::Test, public OwnSharedMemory {
protected:
    // Has the object of a module cut short at a moment of what is called.
    template <typename Call> static auto cutting(int module, moment when, Call call)
    {
        cuts = 0;
        cut_object = object_path(module);
        cut_at = when;
        const auto result = call();
        cut_at = moment::never;
        return result;
    }
};

TEST_F(ShareCalls, ACutWhileAClientAttachesDoesNotEndIt)
{
    ASSERT_NE(para_share_publish(0, 1, 8000), nullptr);
    EXPECT_EQ(cutting(0, moment::before_reading, [] { return para_share_register(0); }), -1);
    EXPECT_EQ(cuts, 1);

    ASSERT_NE(para_share_publish(0, 1, 8000), nullptr);
    EXPECT_EQ(cutting(0, moment::before_closing, [] { return para_share_register(0); }), 0);
    EXPECT_EQ(cuts, 1);
    EXPECT_EQ(para_share_register(0), -1);
    EXPECT_EQ(para_get_share_map(0, 1), nullptr);
}

TEST_F(ShareCalls, ACutWhileAMapIsPublishedDoesNotEndThePublisher)
{
    EXPECT_NE(cutting(1, moment::before_writing, [] { return para_share_publish(1, 1, 8000); }),
              nullptr);
    EXPECT_EQ(cuts, 1);
    EXPECT_EQ(read_object(1),
              word_bytes(1) + word_bytes(1) + word_bytes(8000) + std::string(8000, '\0'));

    EXPECT_NE(cutting(1, moment::before_closing, [] { return para_share_publish(1, 1, 8000); }),
              nullptr);
    EXPECT_EQ(cuts, 1);
    EXPECT_EQ(read_object(1), "");
    EXPECT_EQ(para_share_register(1), -1);
}
