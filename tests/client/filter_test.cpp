// Globs, and what the rules say of a file.
#include <gtest/gtest.h>

#include "base/glob.h"
#include "stages/media/file_filter.h"
#include "stages/media/file_kinds.h"

namespace kesta::test {
namespace {

TEST(GlobTest, Matches)
{
    const std::pair<const char*, const char*> matching[] = {
        {"*.wav", "a.wav"},     {"*.wav", "A.WAV"},    {"*", ".a"},        {"?.mp3", "\u00e4.mp3"},
        {"[a-c]*", "Beat"},     {"[!a-c]*", "dance"},  {"a[", "a["},       {"a[b", "a[b"},
        {"a*b*c", "aXXbYYbZc"}, {"**/b", "b"},         {"**/b", "a/x/b"},  {"a/**", "a/b/c"},
        {"a/**/c", "a/c"},      {"a/**/c", "a/b/b/c"}, {"a/*/c", "a/b/c"}, {"**/a/**/b", "x/a/y/a/z/b"},
        {"*a*/*b*", "xax/xbx"}, {"[]]", "]"},          {"[a-]", "-"},      {"**", "a/b/c"},
        {"**x", "a/b/x"},       {"a**/c", "ab/c"},
    };
    for (const auto& [glob, path] : matching) {
        EXPECT_TRUE(MatchesGlob(glob, path)) << glob << " " << path;
    }
    const std::pair<const char*, const char*> others[] = {
        {"*.wav", "a.wav.mp3"}, {"*", "a/b"},  {"?", "/"},       {"a/*", "a/b/c"}, {"[!a]", "a"},      {"", "a"},
        {"**/b", "ab"},         {"a/**", "a"}, {"*.mp3", "mp3"}, {"[a-c]", "d"},   {"a/**/c", "a/bc"}, {"a?b", "a/b"},
    };
    for (const auto& [glob, path] : others) {
        EXPECT_FALSE(MatchesGlob(glob, path)) << glob << " " << path;
    }
}

TEST(GlobTest, ManyStars_TakeNoLongTime)
{
    std::string glob, path;
    for (int i = 0; i < 200; ++i) {
        glob += "**/a*";
        path += "aaaa/aaaa";
    }
    EXPECT_FALSE(MatchesGlob(glob + 'b', path));
}

TEST(FileKindsTest, EndingsTellTheKind)
{
    EXPECT_TRUE(IsKindOf(Category::kMusic, "a.mp3"));
    EXPECT_TRUE(IsKindOf(Category::kMusic, "A.FLAC"));
    EXPECT_FALSE(IsKindOf(Category::kMusic, "cover.jpg"));
    EXPECT_FALSE(IsKindOf(Category::kMusic, "a.txt"));
    EXPECT_TRUE(IsKindOf(Category::kImages, "a.jpeg"));
    EXPECT_FALSE(IsKindOf(Category::kImages, "a.mp4"));
    EXPECT_TRUE(IsKindOf(Category::kVideos, "a.MP4"));
    EXPECT_TRUE(IsKindOf(Category::kDocuments, "a.mp3"));
    // Nothing that tells a kind.
    EXPECT_TRUE(IsKindOf(Category::kMusic, "Track"));
    EXPECT_TRUE(IsKindOf(Category::kMusic, "Symphony No. 5"));
    EXPECT_TRUE(IsKindOf(Category::kMusic, "Op.27"));
}

std::string RuleFor(const FileFilter& filter, const std::string& path)
{
    const auto leftOut = filter.leftOut(path);
    return leftOut ? leftOut->rule : std::string();
}

TEST(FileFilterTest, JunkStays)
{
    const FileFilter filter(Category::kDocuments, {});
    for (const char* junk :
         {".DS_Store", "a/Thumbs.db", "desktop.ini", "a.part", ".git/config", "x/._a", "~$letter.doc"}) {
        EXPECT_EQ(filter.leftOut(junk)->reason, LeftOut::Reason::kJunk) << junk;
    }
    EXPECT_TRUE(filter.prunes("a/.git"));
    EXPECT_FALSE(filter.leftOut("apart"));
}

TEST(FileFilterTest, JunkComesAlongWhenItIsIncludedItself)
{
    EXPECT_TRUE(FileFilter(Category::kDocuments, {{true, "*.txt"}}).leftOut(".git/a.txt"));
    EXPECT_TRUE(FileFilter(Category::kDocuments, {{true, "*.txt"}}).prunes(".git"));
    EXPECT_FALSE(FileFilter(Category::kDocuments, {{true, ".git"}}).leftOut(".git/a.txt"));
    EXPECT_FALSE(FileFilter(Category::kDocuments, {{true, "*.part"}}).leftOut("a.part"));
}

TEST(FileFilterTest, LastRuleThatFitsDecides)
{
    const FileFilter filter(Category::kMusic, {{false, "*"}, {true, "*.mp3"}, {false, "Live/"}, {true, "cover.jpg"}});
    EXPECT_EQ(RuleFor(filter, "a.flac"), "--exclude *");
    EXPECT_EQ(RuleFor(filter, "a.mp3"), "");
    EXPECT_EQ(RuleFor(filter, "Live/a.mp3"), "--exclude Live/");
    EXPECT_EQ(RuleFor(filter, "Live"), "--exclude *");
    EXPECT_EQ(RuleFor(filter, "Live/cover.jpg"), "");
    EXPECT_FALSE(filter.prunes("Live"));
    EXPECT_TRUE(FileFilter(Category::kMusic, {{false, "Live"}}).prunes("Old/Live"));
}

TEST(FileFilterTest, GlobWithASlashIsAPath)
{
    const FileFilter filter(Category::kMusic, {{false, "Rock/Live"}, {false, "/Pop"}});
    EXPECT_TRUE(filter.leftOut("Rock/Live/a.mp3"));
    EXPECT_FALSE(filter.leftOut("Old/Rock/Live/a.mp3"));
    EXPECT_TRUE(filter.leftOut("Pop/a.mp3"));
    EXPECT_FALSE(filter.leftOut("Old/Pop/a.mp3"));
}

TEST(FileFilterTest, IgnoreFilesBelongToTheirFolder)
{
    FileFilter filter(Category::kMusic, {{true, "wanted.wav"}});
    filter.addIgnoreFile("Rock", "# loud things\r\n\n*.wav\nLive/\n/top.mp3\n\\#1.mp3\n");
    filter.addIgnoreFile("Rock/Studio", "!*.wav\n");
    EXPECT_EQ(RuleFor(filter, "Rock/a.wav"), ".kestaignore in Rock: *.wav");
    EXPECT_EQ(RuleFor(filter, "a.wav"), "");
    EXPECT_EQ(RuleFor(filter, "Rock/wanted.wav"), "");
    EXPECT_EQ(RuleFor(filter, "Rock/Studio/a.wav"), "");
    EXPECT_TRUE(filter.leftOut("Rock/Live/a.mp3"));
    EXPECT_TRUE(filter.leftOut("Rock/top.mp3"));
    EXPECT_FALSE(filter.leftOut("Rock/Deep/top.mp3"));
    EXPECT_TRUE(filter.leftOut("Rock/#1.mp3"));
}

}  // namespace
}  // namespace kesta::test
