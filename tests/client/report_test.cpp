// kesta report: one page with all there is to say of the phones.
#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// The smallest pictures that say what they are.
const std::string kJpeg = "\xFF\xD8\xFF\xE0 cover of the album";
const std::string kJpegInBase64 = "/9j/4CBjb3ZlciBvZiB0aGUgYWxidW0=";

class ReportTest : public ClientTest {
protected:
    [[nodiscard]] std::string file() const { return Utf8(work() / "report.html"); }
    std::string report(const std::vector<std::string>& more = {})
    {
        std::vector<std::string> arguments{"report", "--html", file()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Ended run = client(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        std::ostringstream text;
        text << std::ifstream(Path(file()), std::ios::binary).rdbuf();
        return text.str();
    }
    static std::string number(size_t value, int bytes, int bits)
    {
        std::string text;
        for (int i = bytes - 1; i >= 0; --i) {
            text += static_cast<char>(value >> (i * bits) & ((1u << bits) - 1));
        }
        return text;
    }
    /// A song with an ID3v2.3 tag that holds the picture.
    static std::string song(const std::string& picture)
    {
        const std::string frame = std::string("\0image/jpeg\0\3\0", 14) + picture;
        const std::string tag = "APIC" + number(frame.size(), 4, 8) + std::string(2, '\0') + frame;
        return "ID3" + std::string("\3\0\0", 3) + number(tag.size(), 4, 7) + tag + "the music";
    }
};

TEST_F(ReportTest, Page_TellsPhonesFamiliesFoldersAndSizes)
{
    givenFile("Rock/a.mp3", std::string(3000, 'a'));
    givenFile("Pictures/b.jpg", "not really");
    givenFile("lists/Mix.m3u8", "../Rock/a.mp3\n");
    ASSERT_EQ(
        sync({"--name", "Ann & <Bob>", "--music", pc("Rock"), "--images", pc("Pictures"), "--playlists", pc("lists")})
            .exitCode,
        0);
    const std::string page = report();
    EXPECT_THAT(page, AllOf(HasSubstr("Ann &amp; &lt;Bob&gt;"), HasSubstr("IMEI 351111"), HasSubstr("<h3>Music</h3>"),
                            HasSubstr("1 file on the phone, 1 on the PC, 3.0 kB, synced"),
                            HasSubstr("class=\"images\" style=\"width:"), HasSubstr("Mix"), HasSubstr("in order"),
                            HasSubstr("prefers-color-scheme: dark")));
    // Nothing beside it, and nothing that runs.
    EXPECT_THAT(page, Not(HasSubstr("http")));
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, Not(HasSubstr("<Bob>")));
}

TEST_F(ReportTest, LastRuns_TellFailuresAndDeferredRemovals)
{
    for (const char* name : {"a", "b", "c"}) {
        givenFile(std::string("Rock/") + name, name);
    }
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    removeFile("Rock/a");
    removeFile("Rock/b");
    ASSERT_EQ(sync({"--music", pc("Rock"), "--images", pc("nowhere")}).exitCode, 3);
    const std::string page = report();
    EXPECT_THAT(page, AllOf(HasSubstr("3 copied, 0 updated, 0 removed, 0 unchanged, 0 failed"),
                            HasSubstr("2 removals deferred"), HasSubstr("1 failure"), HasSubstr("nowhere: ")));
    EXPECT_LT(page.find("2 removals deferred"), page.find("3 copied")) << "the latest comes first";
}

TEST_F(ReportTest, CoversAndPictures_AreInThePage)
{
    givenFile("Rock/a.mp3", song(kJpeg));
    givenFile("Rock/b.mp3", song(kJpeg));
    givenFile("Rock/c.mp3", "no tag at all");
    givenFile("Pictures/small.png", "\x89PNG\r\n\x1A\n tiny");
    ASSERT_EQ(sync({"--music", pc("Rock"), "--images", pc("Pictures")}).exitCode, 0);
    const std::string page = report();
    const std::string cover = "src=\"data:image/jpeg;base64," + kJpegInBase64 + "\"";
    EXPECT_THAT(page, HasSubstr(cover));
    EXPECT_EQ(page.find(cover), page.rfind(cover)) << "songs of an album share it";
    EXPECT_THAT(page, HasSubstr("data:image/png;base64,"));
}

TEST_F(ReportTest, CoversOfFlacAndThumbnailsOfPhotographs_AreFound)
{
    const std::string picture = "\x89PNG\r\n\x1A\n in FLAC";
    const std::string block = number(3, 4, 8) + number(9, 4, 8) + "image/png" + number(0, 4, 8) +
                              std::string(16, '\0') + number(picture.size(), 4, 8) + picture;
    givenFile("Rock/a.flac", "fLaC" + number(0, 1, 8) + number(2, 3, 8) + "xx" + number(0x86, 1, 8) +
                                 number(block.size(), 3, 8) + block);
    // Two directories: the second one says where the thumbnail is.
    std::string tiff = "MM" + number(42, 2, 8) + number(8, 4, 8) + number(0, 2, 8) + number(14, 4, 8) +
                       number(2, 2, 8) + number(0x0201, 2, 8) + number(4, 2, 8) + number(1, 4, 8) + number(44, 4, 8) +
                       number(0x0202, 2, 8) + number(4, 2, 8) + number(1, 4, 8) + number(kJpeg.size(), 4, 8) +
                       number(0, 4, 8) + kJpeg;
    const std::string exif = std::string("Exif\0\0", 6) + tiff;
    givenFile("Pictures/b.jpg",
              "\xFF\xD8\xFF\xE1" + number(exif.size() + 2, 2, 8) + exif + "\xFF\xDA" + std::string(300'000, 'p'));
    ASSERT_EQ(sync({"--music", pc("Rock"), "--images", pc("Pictures")}).exitCode, 0);
    const std::string page = report();
    EXPECT_THAT(page, HasSubstr("data:image/png;base64,"));
    EXPECT_THAT(page, HasSubstr("data:image/jpeg;base64," + kJpegInBase64));
}

TEST_F(ReportTest, AnotherFileInItsPlace_IsLeftAlone)
{
    std::ofstream(Path(file())) << "mine";
    const Ended run = client({"report", "--html", file()});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("is there already"));
    fs::remove(Path(file()));
    EXPECT_THAT(report(), HasSubstr("No phone has been synced yet"));
    EXPECT_THAT(report(), HasSubstr("No phone has been synced yet"));
    EXPECT_EQ(client({"report"}).exitCode, 2);
    EXPECT_EQ(client({"report", "--html", file(), "--imei", "4711"}).exitCode, 1);
}

}  // namespace
}  // namespace kesta::test
