#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>

#include "tests/platform/folder.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class ConfigureObject : public Folder {
protected:
    Conf conf;
};

TEST_F(ConfigureObject, IsEmptyAtFirst)
{
    ASSERT_NE(conf.object, nullptr);
    EXPECT_THAT(conf.entries(), IsEmpty());
    EXPECT_EQ(conf.get("port"), "absent");
    EXPECT_EQ(conf.found("port"), nullptr);
}

TEST_F(ConfigureObject, CarriesItsOperationsInOrderAtItsBeginning)
{
    conf.set("port", "80");
    void *operations[4];
    memcpy(operations, static_cast<const void *>(conf.object), sizeof operations);
    EXPECT_EQ(operations[0], reinterpret_cast<void *>(conf.object->conf_get));
    EXPECT_EQ(operations[1], reinterpret_cast<void *>(conf.object->conf_loop));
    EXPECT_EQ(operations[2], reinterpret_cast<void *>(conf.object->conf_set));
    EXPECT_EQ(operations[3], reinterpret_cast<void *>(conf.object->conf_find));
}

TEST_F(ConfigureObject, MayBeFreedAsNull)
{
    configure_free(nullptr);
}

TEST_F(ConfigureObject, TellsAChangeFromTheSameValue)
{
    EXPECT_EQ(conf.set("port", "80"), 1);
    EXPECT_EQ(conf.set("port", "80"), 0);
    EXPECT_EQ(conf.set("port", "8"), 1);
    EXPECT_EQ(conf.set("port", ""), 1);
    EXPECT_EQ(conf.set("port", ""), 0);
    EXPECT_EQ(conf.get("port"), "");
}

TEST_F(ConfigureObject, AddsNewKeysBehindTheOthers)
{
    ASSERT_EQ(conf.parse(write("a.conf", "z=1\na=2\n")), 0);
    conf.set("m", "3");
    conf.set("z", "4");
    EXPECT_THAT(conf.entries(), ElementsAre(Pair("z", "4"), Pair("a", "2"), Pair("m", "3")));
}

TEST_F(ConfigureObject, TellsKeysApartByCase)
{
    conf.set("port", "1");
    conf.set("Port", "2");
    EXPECT_THAT(conf.entries(), ElementsAre(Pair("port", "1"), Pair("Port", "2")));
}

TEST_F(ConfigureObject, CopiesAValueThatFitsWithItsZero)
{
    conf.set("port", "6800");
    char buffer[8];
    memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(conf.object->conf_get(conf.object, "port", buffer, 5), 0);
    EXPECT_STREQ(buffer, "6800");
    EXPECT_EQ(buffer[5], 'x');
}

TEST_F(ConfigureObject, RefusesToCopyAValueThatDoesNotFit)
{
    conf.set("port", "6800");
    conf.set("empty", "");
    char buffer[8] = "before";
    EXPECT_EQ(conf.object->conf_get(conf.object, "port", buffer, 4), -1);
    EXPECT_EQ(conf.object->conf_get(conf.object, "empty", buffer, 0), -1);
    EXPECT_EQ(conf.object->conf_get(conf.object, "port", buffer, -1), -1);
    EXPECT_EQ(conf.object->conf_get(conf.object, "absent", buffer, 8), -1);
    EXPECT_EQ(conf.object->conf_get(conf.object, nullptr, buffer, 8), -1);
    EXPECT_STREQ(buffer, "before");
}

TEST_F(ConfigureObject, RefusesWhatNoLineCanHold)
{
    conf.set("port", "80");
    for (const char *value : {"1\n2", "\n", "80\nadmin = \"1"})
        EXPECT_EQ(conf.set("port", value), 0) << value;
    for (const char *key :
         {"", " ", "#port", "a=b", "a b", " port", "port ", "a\tb", "a\nb", "a\r"})
        EXPECT_EQ(conf.set(key, "1"), 0) << key;
    EXPECT_EQ(conf.object->conf_set(conf.object, "port", nullptr), 0);
    EXPECT_EQ(conf.object->conf_set(conf.object, nullptr, "1"), 0);
    EXPECT_THAT(conf.entries(), ElementsAre(Pair("port", "80")));
}

TEST_F(ConfigureObject, FindsTheValueText256BytesIntoTheEntry)
{
    const std::string long_key(300, 'k');
    conf.set("port", "80");
    conf.set(long_key, "long");
    EXPECT_STREQ(conf.found("port"), "80");
    EXPECT_STREQ(conf.found(long_key), "long");
    EXPECT_EQ(conf.found("por"), nullptr);
    EXPECT_EQ(conf.object->conf_find(conf.object, nullptr), nullptr);
}

TEST_F(ConfigureObject, FindsAnEntryThatBeginsWithItsKey)
{
    const std::string long_key(300, 'k');
    conf.set("port", "80");
    conf.set(long_key, "long");
    const auto entry = [this](const std::string &key) {
        return static_cast<const char *>(conf.object->conf_find(conf.object, key.c_str()));
    };
    EXPECT_STREQ(entry("port"), "port");
    EXPECT_STREQ(entry(long_key), std::string(255, 'k').c_str());
}

TEST_F(ConfigureObject, KeepsAFoundTextUntilItsKeyIsSetAgain)
{
    conf.set("port", "80");
    const char *const found = conf.found("port");
    for (int i = 0; i < 1000; i++)
        conf.set("key" + std::to_string(i), std::string(static_cast<size_t>(i), 'v'));
    conf.set("port", "80");
    ASSERT_EQ(conf.parse(write("a.conf", "port=80\nother=1\n")), 0);
    EXPECT_EQ(conf.found("port"), found);
    EXPECT_STREQ(found, "80");

    conf.set("port", "81");
    EXPECT_STREQ(conf.found("port"), "81");
}

TEST_F(ConfigureObject, LoopsOverTheEntriesAsTheyWere)
{
    conf.set("a", "1");
    conf.set("b", "2");
    struct visit {
        Conf *conf;
        std::string seen;
    } visits = {&conf, ""};
    const auto use_the_object = [](void *argument, const char *key, const char *value) {
        visit *const all = static_cast<visit *>(argument);
        all->seen += std::string(key) + "=" + value + "/" + all->conf->get(key) + " ";
        all->conf->set("b", "changed");
        all->conf->set("c", "new");
        return 1;
    };
    EXPECT_EQ(conf.object->conf_loop(conf.object, use_the_object, &visits), 0);
    EXPECT_EQ(visits.seen, "a=1/1 b=2/changed ");
    EXPECT_THAT(conf.entries(),
                ElementsAre(Pair("a", "1"), Pair("b", "changed"), Pair("c", "new")));
}

TEST_F(ConfigureObject, AddsAndOverwritesWhatAFileNames)
{
    ASSERT_EQ(conf.parse(write("home.conf", "a=1\nb=2\n")), 0);
    ASSERT_EQ(conf.parse(write("data.conf", "b=3\nc=4\n")), 0);
    EXPECT_THAT(conf.entries(), ElementsAre(Pair("a", "1"), Pair("b", "3"), Pair("c", "4")));
}

TEST_F(ConfigureObject, IsUnchangedByAFileThatCannotBeRead)
{
    conf.set("port", "80");
    EXPECT_EQ(conf.parse(path("missing.conf")), -1);
    EXPECT_EQ(conf.parse(path("")), -1) << "a folder";
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(conf.parse(""), -1);
    EXPECT_EQ(configure_parse(conf.object, 0, nullptr), -1);
    EXPECT_EQ(configure_parse(nullptr, 0, write("a.conf", "a=1\n").c_str()), -1);
    EXPECT_THAT(conf.entries(), ElementsAre(Pair("port", "80")));
}

TEST_F(ConfigureObject, ReadsAFileWithoutEntries)
{
    EXPECT_EQ(conf.parse(write("a.conf", "# nothing yet\n")), 0);
    EXPECT_THAT(conf.entries(), IsEmpty());
}

// An open file with an exclusive lock.
class Writer {
public:
    explicit Writer(const std::string &path) : file(fopen(path.c_str(), "r+e"))
    {
        EXPECT_EQ(flock(fileno(file), LOCK_EX), 0);
    }
    ~Writer() { fclose(file); }
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;

    FILE *const file;
};

TEST_F(ConfigureObject, WaitsForAFileThatIsBeingRewritten)
{
    const std::string file = write("port.conf", "");
    std::atomic<bool> done{false};
    std::atomic<pid_t> reader_id{0};
    std::thread reader;
    {
        const Writer writer(file);
        reader = std::thread([&] {
            reader_id = gettid();
            EXPECT_EQ(conf.parse(file), 0);
            done = true;
        });
        EXPECT_TRUE(
            eventually([&] { return done || (reader_id != 0 && thread_sleeps(reader_id)); }));
        fputs("port = \"80\"\n", writer.file);
    }
    reader.join();
    EXPECT_EQ(conf.get("port"), "80");
}

TEST_F(ConfigureObject, IsUnchangedByAFileThatIsRewrittenForTooLong)
{
    const std::string file = write("port.conf", "port = \"80\"\n");
    const Writer writer(file);
    conf.set("port", "1");
    in_time([&] {
        const auto start = std::chrono::steady_clock::now();
        errno = 0;
        EXPECT_EQ(conf.parse(file), -1);
        EXPECT_EQ(errno, EWOULDBLOCK);
        const auto waited = std::chrono::steady_clock::now() - start;
        EXPECT_GE(waited, std::chrono::milliseconds(1900));
        EXPECT_LT(waited, std::chrono::milliseconds(6000)) << "on a machine with other work";
    });
    EXPECT_EQ(conf.get("port"), "1");
}

TEST_F(ConfigureObject, SharesAFileWithOtherReaders)
{
    const std::string file = write("port.conf", "port = \"80\"\n");
    FILE *const other = fopen(file.c_str(), "re");
    ASSERT_EQ(flock(fileno(other), LOCK_SH), 0);
    EXPECT_EQ(conf.parse(file), 0);
    EXPECT_EQ(conf.get("port"), "80");
    fclose(other);
}

TEST_F(ConfigureObject, IsNotReadFromWhatIsNoFile)
{
    const std::string fifo = path("fifo.conf");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    in_time([&] {
        errno = 0;
        EXPECT_EQ(conf.parse(fifo), -1);
        EXPECT_EQ(errno, EINVAL);
        EXPECT_EQ(conf.parse("/dev/null"), -1);
    });
    const std::string comment = "#" + std::string(4194303, '-');
    EXPECT_EQ(conf.parse(write("comment.conf", comment)), 0);
    EXPECT_EQ(conf.parse(write("comment.conf", comment + "\n")), -1);
    EXPECT_EQ(errno, EFBIG);
}
