// Malformed answers.
#include "cli/run.h"

namespace {

TEST(ClientAnswers, NoJsonIsNoAnswer)
{
    shared_text garbage;
    const fake_server camera(
        [&](const std::string &) { return std::vector<std::string>{garbage}; });

    for (const std::string &text :
         {std::string("garbage"), std::string(), std::string("\0\x01\xff", 3), std::string("{"),
          std::string("\"text\""), std::string("[1,2]"), std::string("null"),
          std::string(60000, '['), std::string(30000, '[') + std::string(30000, ']')}) {
        garbage = text;
        for (const std::vector<std::string> &words : std::vector<std::vector<std::string>>{
                 {"list"}, {"get", "af"}, {"set", "af.zoom_value=1"}, {"call", "save"}}) {
            const run_result got = run_until_reported(words, "1 not understood");
            EXPECT_EQ(got.status, 3) << words[0] << text.substr(0, 20);
            EXPECT_NE(got.errors.find("1 not understood"), std::string::npos) << got.errors;
        }
    }
}

TEST(ClientAnswers, AModuleThatIsNoObjectIsNotUnderstood)
{
    shared_text values;
    const fake_server camera([&](const std::string &request) {
        return std::vector<std::string>{reply_to(request, values)};
    });

    for (const char *wrong : {"5", "'all'", "[1]", "null", "true"}) {
        values = "'af':" + std::string(wrong);
        const run_result got = run({"get", "af.zoom_value"});
        EXPECT_EQ(got.status, 1) << wrong;
        EXPECT_EQ(got.errors, "camparam: the host's answer for \"af\" is not understood\n");
    }
}

TEST(ClientAnswers, ValuesOfAnyTypeArePrinted)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{reply_to(
            request, "'af':{'a':1e300,'b':[1,{'c':null}],'d':true,'e':'x\\ny','f':null,'':2.5}")};
    });

    EXPECT_EQ(run({"get", "af"}).output,
              "af.a=1e+300\naf.b=[1,{\"c\":null}]\naf.d=true\naf.e=x\\x0ay\naf.f=null\naf=2.5\n");
}

TEST(ClientAnswers, ControlCharactersAreEscaped)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{
            reply_to(request, "'af':{'a\\u007f':'\\u001b[31m\\u007f'}")};
    });

    EXPECT_EQ(run({"get", "af"}).output, "af.a\\x7f=\\x1b[31m\\x7f\n");
    EXPECT_EQ(run({"get", "af.b\x1b"}).errors, "camparam: no setting \"af.b\\x1b\"\n");
}

TEST(ClientAnswers, AStyleListOfAnotherTypeIsNone)
{
    shared_text styles;
    const fake_server camera([&](const std::string &request) {
        return std::vector<std::string>{reply_to(request, "'styles':" + std::string(styles))};
    });

    for (const char *none : {"5", "{}", "'vivid'", "null"}) {
        styles = none;
        EXPECT_EQ(run({"style"}).status, 1) << none;
    }
}

TEST(ClientAnswers, ADescriptionOfWrongTypesIsReadAsFarAsItGoes)
{
    shared_text modules;
    const fake_server camera([&](const std::string &request) {
        return std::vector<std::string>{reply_to(request, "'modules':" + std::string(modules))};
    });

    for (const char *none : {"5", "[]", "null", "'x'"}) {
        modules = none;
        EXPECT_EQ(run({"list"}).status, 1) << none;
    }
    for (const char *empty : {"{}", "{'af':5}", "{'af':{'members':[1]}}", "{'af':{'members':'x'}}",
                              "{'af':{'set':5,'members':{'zoom_value':5}}}"}) {
        modules = empty;
        const run_result listed = run({"list"});
        EXPECT_EQ(listed.status, 0) << empty;
        EXPECT_EQ(listed.output, "NAME  KIND  MIN  MAX  DEFAULT  VALUE\n");
    }
    modules = "{'af':{'members':{'zoom_value':{'kind':[],'min':'low','max':{},'names':5,"
              "'default':null}}}}";
    EXPECT_EQ(run({"list"}).output, "NAME           KIND  MIN  MAX  DEFAULT  VALUE\n"
                                    "af.zoom_value  -     low  {}   null     -      *\n");
}

TEST(ClientAnswers, LimitsNeedBothEnds)
{
    const fake_server camera(describing("'af':{'members':{'low':{'kind':'number','min':0},"
                                        "'high':{'kind':'number','max':9}}}",
                                        ""));

    for (const char *member : {"low", "high"})
        EXPECT_EQ(run({"set", "af." + std::string(member) + "=x"}).errors,
                  "camparam: af." + std::string(member) +
                      ": \"x\" is no number\ncamparam: nothing was set\n");
}

TEST(ClientAnswers, ASetNeedsAnAnswerWithItsIdentifier)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{is_for(request, "set")
                                            ? quoted("{'msg_name':'camparam'}")
                                            : reply_to(request, "'af':{'zoom_value':5}")};
    });

    const run_result got =
        run_until_reported({"set", "--number", "af.zoom_value=5"}, "1 not understood");
    EXPECT_EQ(got.status, 3) << got.errors;
}

TEST(ClientAnswers, AStyleThatTheHostDoesNotSetIsRefused)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{is_for(request, "api_set")
                                            ? quoted("{'err':'Invalid API command'}")
                                            : reply_to(request, "'styles':['vivid']")};
    });

    const run_result refused = run({"style", "vivid"});
    EXPECT_EQ(refused.status, 4);
    EXPECT_EQ(refused.errors, "camparam: the host refused the style \"vivid\"\n");
}

TEST(ClientAnswers, ASetWhoseAnswerChangesTypeIsNotTaken)
{
    shared_text value;
    const fake_server camera([&](const std::string &request) {
        return std::vector<std::string>{
            reply_to(request, is_for(request, "describe")
                                  ? "'modules':{'af':{'members':{'zoom_value':{'kind':'number'}}}}"
                                  : "'af':{'zoom_value':" + std::string(value) + "}")};
    });

    for (const char *wrong : {"'5'", "null", "[5]", "5.5", "true"}) {
        value = wrong;
        EXPECT_EQ(run({"set", "af.zoom_value=5"}).status, 4) << wrong;
    }
    value = "5";
    EXPECT_EQ(run({"set", "af.zoom_value=5"}).status, 0);
}

} // namespace
