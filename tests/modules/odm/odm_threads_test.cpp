// The ODM store used by several threads at once. Run under the thread sanitizer, these cases also
// tell of a lock that is not taken.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "modules/odm/odm_fixture.h"
#include "support/thread_state.h"

using testing::AnyOf;

class OdmThreads : public Odm {
protected:
    OdmThreads() { para_profile.odm_set_notify_hook = nullptr; }
};

// Tells that a thread has begun. Relaxed: nothing but the store's own locks may order what the
// threads do.
static std::atomic<int> begun{0};

static void begin()
{
    begun.fetch_add(1, std::memory_order_relaxed);
}

TEST_F(OdmThreads, ReadersMeetTheFirstValueOrNone)
{
    init();
    std::vector<std::thread> readers;
    readers.emplace_back([this] {
        begin();
        for (int i = 0; i < 500; i++)
            EXPECT_THAT(number("mine"), AnyOf("5", "error -1", "error -2"));
    });
    readers.emplace_back([] {
        begin();
        for (int i = 0; i < 500; i++)
            EXPECT_THAT(text("text"), AnyOf("x", "error -1", "error -2"));
    });
    readers.emplace_back([] {
        begin();
        for (int i = 0; i < 50; i++)
            EXPECT_EQ(para_save_odm("odmInter"), 0);
    });
    while (begun.load(std::memory_order_relaxed) < 3)
        std::this_thread::yield();
    para_set_odm_int("mine", 5);
    para_set_odm_string("text", "x");
    for (std::thread &reader : readers)
        reader.join();
    EXPECT_EQ(saved_document(), "{'version':1,'mine':5,'text':'x'}");
}

TEST_F(OdmThreads, ADocumentIsReadWholeWhileAnotherIsLoaded)
{
    const std::string long_text(PARA_ODM_TEXT_MAX - 1, 'l');
    init("{'version':1,'text':'" + long_text + "'}");
    std::thread reader([&] {
        begin();
        for (int i = 0; i < 20000; i++)
            ASSERT_EQ(text("text"), long_text);
    });
    while (begun.load(std::memory_order_relaxed) < 1)
        std::this_thread::yield();
    for (int i = 0; i < 100; i++)
        EXPECT_EQ(init(), 0);
    reader.join();
}

// Called once, when the JSON library next frees memory.
static std::atomic<void (*)()> next_free{nullptr};

static void watched_free(void *memory)
{
    if (void (*const call)() = next_free.exchange(nullptr))
        call();
    free(memory);
}

TEST_F(OdmThreads, AReaderWaitsForALoad)
{
    static std::thread reader;
    static std::atomic<pid_t> reading{0};
    static std::atomic<bool> ended{false};
    static std::string read;
    // No numbers: some versions of the JSON library free memory while they parse one.
    init("{'text':'old'}");
    write_store("{'text':'new'}");
    cJSON_Hooks hooks = {malloc, watched_free};
    cJSON_InitHooks(&hooks);
    next_free = [] { // the first of the old document's items is about to go
        reader = std::thread([] {
            reading = gettid();
            read = text("text");
            ended = true;
        });
        wait_until([] { return ended || (reading != 0 && stays_asleep(reading)); });
        EXPECT_FALSE(ended) << "reads a document that is being freed";
    };
    EXPECT_EQ(init(), 0);
    ASSERT_TRUE(reader.joinable());
    reader.join();
    cJSON_InitHooks(nullptr);
    EXPECT_EQ(read, "new");
}

TEST_F(OdmThreads, ATextIsReadWholeWhileItIsSet)
{
    init();
    const std::string short_text(3, 's'), long_text(PARA_ODM_TEXT_MAX - 1, 'l');
    para_set_odm_string("text", short_text.c_str());
    std::thread host([&] {
        for (int i = 0; i < 2000; i++)
            para_set_odm_string("text", (i % 2 == 0 ? long_text : short_text).c_str());
    });
    for (int i = 0; i < 2000; i++)
        ASSERT_THAT(text("text"), AnyOf(short_text, long_text));
    host.join();
}

TEST_F(OdmThreads, IsSavedWholeWhileItIsSet)
{
    init();
    const std::string short_text(3, 's'), long_text(1000, 'l');
    para_set_odm_string("text", short_text.c_str());
    std::thread host([&] {
        for (int i = 0; i < 2000; i++) {
            para_set_odm_string("text", (i % 2 == 0 ? long_text : short_text).c_str());
            para_set_odm_int(("key" + std::to_string(i % 100)).c_str(), i);
        }
    });
    for (int i = 0; i < 50; i++) {
        const json document = parse(saved().c_str());
        const cJSON *const item = cJSON_GetObjectItem(document.get(), "text");
        ASSERT_TRUE(cJSON_IsString(item));
        ASSERT_THAT(item->valuestring, AnyOf(short_text, long_text));
    }
    host.join();
}
