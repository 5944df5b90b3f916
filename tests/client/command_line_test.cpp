// The command line itself: versions, mistakes, and what is written about it.
#include <cctype>

#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using CommandLineTest = ClientTest;

TEST_F(CommandLineTest, Version_TellsSqlitesToo)
{
    const Ended run = client({"--version"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, StartsWith("kesta 1.0.0, SQLite 3."));
}

TEST_F(CommandLineTest, UnknownCommand_NamesTheOneThatWasMeant)
{
    const Ended run = client({"snyc", "--phone", phone()});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("unknown command 'snyc': did you mean sync?"));
    EXPECT_THAT(client({"nonsense"}).err, StartsWith("kesta: unknown command 'nonsense'\n"));
}

TEST_F(CommandLineTest, UnknownOption_NamesTheOneThatWasMeant)
{
    const Ended run = client({"sync", "--phone", phone(), "--musik", pc()});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("unknown option '--musik': did you mean --music?"));
    EXPECT_FALSE(fs::exists(phone(".kesta-phone")));
}

TEST_F(CommandLineTest, CompletionsAndManual_HaveEveryCommandAndItsOptions)
{
    const std::string help = client({"--help"}).out;
    EXPECT_THAT(help, Not(HasSubstr("generate")));
    const std::string bash = client({"generate", "bash"}).out;
    const std::string zsh = client({"generate", "zsh"}).out;
    const std::string fish = client({"generate", "fish"}).out;
    const std::string manual = client({"generate", "man"}).out;
    for (const std::string command : {"sync", "status", "files", "why", "restore", "settings", "forget", "trace"}) {
        EXPECT_THAT(help, HasSubstr("  " + command + " "));
        EXPECT_THAT(bash, HasSubstr("        " + command + ") words='"));
        EXPECT_THAT(zsh, HasSubstr("        '" + command + ":"));
        EXPECT_THAT(fish, HasSubstr("complete -c kesta -n __fish_use_subcommand -a " + command + " -d '"));
        EXPECT_THAT(manual, HasSubstr(".BR kesta\\-" + command + " (1)"));
        EXPECT_THAT(client({"generate", "man", command}).out, HasSubstr(".B kesta " + command + "\n"));
    }
    EXPECT_THAT(bash, HasSubstr("'sync --phone'"));
    EXPECT_THAT(zsh, HasSubstr("'--phone["));
    EXPECT_THAT(fish, HasSubstr("-l phone"));
    EXPECT_THAT(client({"generate", "man", "sync"}).out, HasSubstr("\\fB\\-\\-phone\\fR \\fIDIR\\fR"));
    EXPECT_EQ(client({"generate", "man", "dance"}).exitCode, 2);
    EXPECT_EQ(client({"generate", "csh"}).exitCode, 2);
}

TEST_F(CommandLineTest, GenerateAll_WritesTheFilesOfAPackage)
{
    EXPECT_EQ(client({"generate", "all", "--into", pc()}).exitCode, 0);
    for (const char* file : {"man/man1/kesta.1", "man/man1/kesta-sync.1", "bash-completion/completions/kesta",
                             "zsh/vendor-completions/_kesta", "fish/vendor_completions.d/kesta.fish"}) {
        EXPECT_GT(fs::file_size(Path(pc(file))), 500u) << file;
    }
}

}  // namespace
}  // namespace kesta::test
