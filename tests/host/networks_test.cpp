#include "networks.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <cerrno>

#include "support/refused_call.h"

namespace {

constexpr uint32_t address(uint32_t a, uint32_t b, uint32_t c, uint32_t d)
{
    return a << 24 | b << 16 | c << 8 | d;
}

TEST(Networks, AreReadFromTexts)
{
    const std::optional<network> office = parse_network("192.168.1.0/24");
    ASSERT_TRUE(office);
    EXPECT_TRUE(office->has(address(192, 168, 1, 0)));
    EXPECT_TRUE(office->has(address(192, 168, 1, 255)));
    EXPECT_FALSE(office->has(address(192, 168, 2, 0)));
    EXPECT_FALSE(office->has(address(192, 168, 0, 255)));

    const std::optional<network> odd = parse_network("10.1.2.3/31");
    ASSERT_TRUE(odd);
    EXPECT_TRUE(odd->has(address(10, 1, 2, 2)));
    EXPECT_FALSE(odd->has(address(10, 1, 2, 4)));
}

TEST(Networks, AnAddressAloneIsANetwork)
{
    for (const char *text : {"10.1.2.3", "10.1.2.3/32"}) {
        const std::optional<network> one = parse_network(text);
        ASSERT_TRUE(one) << text;
        EXPECT_TRUE(one->has(address(10, 1, 2, 3)));
        EXPECT_FALSE(one->has(address(10, 1, 2, 2)));
    }
}

TEST(Networks, LengthZeroIsEverybody)
{
    const std::optional<network> all = parse_network("0.0.0.0/0");
    ASSERT_TRUE(all);
    EXPECT_TRUE(all->has(0));
    EXPECT_TRUE(all->has(0xffffffff));
}

TEST(Networks, OtherTextsAreNone)
{
    for (const char *text :
         {"", "/", "10.1.2.3/", "10.1.2.3/33", "10.1.2.3/-1", "10.1.2.3/+8", "10.1.2.3/8x",
          "10.1.2.3/ 8", "10.1.2/24", "10.1.2.3.4", "10.1.2.256", " 10.1.2.3", "::1/128", "camera",
          "10.1.2.3/8/8", "10.1.2.3/4294967304"})
        EXPECT_FALSE(parse_network(text)) << text;
}

int times_asked = 0;
std::vector<network> present;

std::vector<network> ask_for_present()
{
    times_asked++;
    return present;
}

TEST(AllowedNetworks, ThisMachineIsAlwaysAmongThem)
{
    allowed_networks given({{.address = address(10, 0, 0, 0), .mask = 0xff000000}},
                           ask_for_present);
    EXPECT_TRUE(given.has(address(127, 0, 0, 1), 0));
    EXPECT_TRUE(given.has(address(127, 255, 255, 255), 0));
    EXPECT_FALSE(given.has(address(128, 0, 0, 0), 0));
}

TEST(AllowedNetworks, GivenOnesTakeThePlaceOfTheInterfacesNetworks)
{
    present = {{.address = address(192, 168, 1, 5), .mask = 0xffffff00}};
    allowed_networks given({{.address = address(10, 0, 0, 0), .mask = 0xff000000}},
                           ask_for_present);
    EXPECT_TRUE(given.has(address(10, 9, 9, 9), 0));
    EXPECT_EQ(times_asked, 0);
    EXPECT_FALSE(given.has(address(192, 168, 1, 1), 0));
    EXPECT_FALSE(given.has(address(192, 168, 1, 0), 0));
}

TEST(AllowedNetworks, AddressesOfTheInterfacesAreAmongThemWhateverIsGiven)
{
    const uint32_t own = address(192, 168, 1, 5);
    present = {{.address = own, .mask = 0xffffff00}};
    allowed_networks given({{.address = address(10, 0, 0, 0), .mask = 0xff000000}},
                           ask_for_present);
    EXPECT_TRUE(given.has(own, 5000));
    EXPECT_TRUE(given.has(own, 5000));
    EXPECT_EQ(times_asked, 1) << "a known one needs no question";

    present = {{.address = address(192, 168, 1, 6), .mask = 0xffffff00}};
    EXPECT_FALSE(given.has(address(192, 168, 1, 6), 5999));
    EXPECT_TRUE(given.has(address(192, 168, 1, 6), 6000)) << "it has another address since";
    EXPECT_FALSE(given.has(own, 6000));
}

TEST(AllowedNetworks, InterfacesAreAskedForAnewOnceASecond)
{
    allowed_networks allowed({}, ask_for_present);
    const uint32_t host = address(192, 168, 1, 7);

    EXPECT_FALSE(allowed.has(host, 5000));
    EXPECT_EQ(times_asked, 1);
    present = {{.address = address(192, 168, 1, 0), .mask = 0xffffff00}};
    EXPECT_FALSE(allowed.has(host, 5999));
    EXPECT_EQ(times_asked, 1);
    EXPECT_TRUE(allowed.has(host, 6000));
    EXPECT_TRUE(allowed.has(host, 9000));
    EXPECT_EQ(times_asked, 2) << "a known one needs no question";

    present = {};
    EXPECT_FALSE(allowed.has(address(10, 0, 0, 1), 9000));
    EXPECT_FALSE(allowed.has(host, 9000)) << "its interface is gone";
}

TEST(AllowedNetworks, InterfacesOfThisMachineAreFound)
{
    bool found = false;
    for (const network &each : interface_networks())
        found |= each.has(address(127, 0, 0, 1)) && each.mask == 0xff000000;
    EXPECT_TRUE(found) << "the loopback interface";
}

TEST(AllowedNetworks, InterfacesThatCannotBeAskedForAreNone)
{
    refuse_call(SYS_socket, EMFILE);
    EXPECT_TRUE(interface_networks().empty());
    EXPECT_FALSE(allowed_networks({}, interface_networks).has(address(192, 168, 1, 7), 0));
}

} // namespace
