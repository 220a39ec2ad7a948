// Detection: small samples of every format through the ordered steps, and each content test against every sample.
#include <filesystem>
#include <fstream>
#include <map>
#include <tuple>

#include <sys/stat.h>
#include <unistd.h>

#include "common/text.h"
#include "import/locate.h"
#include "import/tranauto.h"
#include "support.h"

namespace zolt {
namespace {

using namespace std::string_literals;
using test::TemporaryFolder;

namespace fs = std::filesystem;

// 0xFF, 0xFE ... 0x80: nothing any test knows.
std::string noise(size_t n) {
    std::string bytes;
    for (size_t i = 0; i < n; ++i) bytes += static_cast<char>(0xFF - i * 7 % 0x80);
    return bytes;
}

std::string big_words(std::initializer_list<uint32_t> words) {
    std::string bytes;
    for (const uint32_t word : words)
        for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(word >> shift);
    return bytes;
}

std::string padded(std::string start, size_t length) {
    start.resize(length);
    return start;
}

// Two 20-bit words in five bytes, zeros to the length.
std::string nicolet(uint32_t word, size_t length) {
    return padded({static_cast<char>(word >> 12), static_cast<char>(word >> 4), static_cast<char>(word << 4)}, length);
}

// A matrix of 8 x 4 in bricks of 4 x 2.
std::string felix(ByteOrder order) {
    std::string bytes(4 * 4096 + 4 * 32, '\0');
    const std::pair<size_t, uint32_t> words[] = {{0, 2}, {1, 1}, {22, 8}, {23, 4}, {28, 4}, {29, 2}};
    for (const auto& [index, word] : words) store_word(bytes.data() + 4 * index, word, order);
    return bytes;
}

// A file of n 32-bit values; points 16 of 4 bytes behind a head of 512.
std::string spectral(char version) { return padded("\0"s + version + "\0\x80\x10"s, 544 + 64); }

std::string mac_binary(const std::string& type, const std::string& creator) {
    return padded(padded("\0\4name"s, 65) + type + creator, 256);
}

struct Sample {
    int number;
    std::string file, content;
    std::map<std::string, std::string> beside = {};
};

const std::string jdx = "##TITLE=x\r\n##JCAMP-DX= 5.00\r\n##DATA TYPE= NMR SPECTRUM\r\n##DATA CLASS= XYDATA\r\n";
const std::string native = "\1\2\3\4"s + padded("", 8), spar = "!\r\n! CAUTION - x\r\n! GYROSCAN spectro parameter file";

const Sample samples[] = {
    // Names and companions, in any case.
    {70, "Fid", "x", {{"ACQUS", "##TITLE= XWIN-NMR Version 3.5"}}},
    {71, "2rr", "x", {{"acqus", "##TITLE= topspin 4"}}},
    {71, "pdata/1/3RRR", "x", {{"acqus", "##TITLE= TopSpin 4"}}},
    {0, "1i", "x", {{"acqus", "TopSpin"}}},
    {23, "fid", "x", {{"acqus", "x"}, {"procpar", "x"}}},
    {27, "fid", "a000", {{"acqus", "x"}}},
    {22, "FID", "x", {{"Procpar", "x"}}},
    {22, "phasefile", "x", {{"procpar", "x"}}},
    {65, "1r", "x", {{"procs", "x"}}},
    {65, "1R", "x", {{"acqus", "x"}}},
    {24, "ser", "x"},
    {80, "ser", "x", {{"acqu3s", "x"}}},
    {35, "d", "x", {{"PB", "x"}}},
    {36, "data", "x", {{"proc", "x"}, {"acq", "x"}}},
    {0, "data", "x", {{"proc", "x"}}},
    // WinNMR: the first companion of the list counts.
    {55, "a.SER", "x", {{"a.dis", "x"}, {"a.par", "x"}}},
    {51, "a.ser", "x", {{"A.PAR", "x"}}},
    {56, "a.rr", "x", {{"a.dis", "x"}}},
    {52, "a.rr", "x", {{"a.par", "x"}}},
    {57, "a.fid", "x", {{"a.aqs", "x"}, {"a.dis", "x"}, {"a.par", "x"}}},
    {53, "a.fid", "x", {{"a.dis", "x"}}},
    {49, "a.fid", "x", {{"a.par", "x"}}},
    {54, "a.1i", "x", {{"a.dis", "x"}, {"a.fqs", "x"}}},
    {50, "a.1r", "x", {{"a.par", "x"}}},
    {63, "a.1r", "x", {{"a.FQS", "x"}}},
    {55, "a.dis", "x", {{"a.ser", "x"}, {"a.rr", "x"}}},
    {52, "a.par", "x", {{"a.rr", "x"}}},
    {60, "a.aqs", "x", {{"a.ser", "x"}, {"a.1r", "x"}}},
    {58, "a.aqs", "x", {{"a.1r", "x"}, {"a.1i", "x"}}},
    {59, "a.aqs", "x", {{"a.1i", "x"}}},
    {63, "a.fqs", "x", {{"a.1i", "x"}}},
    {0, "a.fid", "x", {{"b.par", "x"}}},
    {0, "a.par", "x", {{"a.fid", "x"}}},
    // A fid alone; with an extension it goes by content.
    {22, "fid", jdx},
    {69, "fid.txt", jdx},
    // Marks and words.
    {32, "a.dat", noise(64), {{"A.anm", "x"}}},
    {0, "a.anm", noise(64)},
    {69, "a.dx", jdx, {{"a.anm", "x"}}},
    {45, "a.mat", felix(ByteOrder::little)},
    {38, "a.mat", felix(ByteOrder::big)},
    {0, "a.mat", felix(ByteOrder::big).substr(0, 4 * 4096 + 4 * 31)},
    {18, "a.txt", "ATI,1,2\r\n"},
    {0, "a.txt", "Atiya,1\r\n"},
    {69, "a", "\n##title=x\r$$ ##X\r##JCAMPDX=\t6.0\r##DATACLASS=\tNTUPLES\r"},
    {69, "a", "##TITLE=x\n##JCAMP-DX= 5\n##DATA TYPE= LINK\n##BLOCKS= 2\n"},
    {0, "acqus", "##TITLE= Parameter file\n##JCAMPDX= 5.0\n##DATATYPE= Parameter Values\n##$TD= 16\n##END=\n"},
    {0, "a", "$$ ##JCAMP-DX= 5\n##DATA CLASS= XYDATA\n"},
    {82, "a.gaml", "<?xml version=\"1.0\"?>\n<GAML version=\"1.20\">"},
    {44, "P1.7", padded("", 34) + "GE_MED_NMR"},
    {44, "P1.7", padded("", 34) + "INVALIDNMR"},
    {40, "m", mac_binary("NDAT", "????")},
    {41, "m", mac_binary("TDAT", "MFD2")},
    {42, "m", "NDATMNMR"},
    {43, "m", mac_binary("NDAT", "MNM5")},
    {0, "m", "MANDATORY TDAT"},
    {72, "a.tnt", "TNT1.008TMAG\1\0\0\0"s},
    {46, "a", "NMRi file"},
    {79, "a.ima", noise(40) + "ACR-NEMA 2.0", {{"a.mag", "x"}}},
    {47, "a.ima", noise(40) + "ACR-NEMA 2.0"},
    {81, "a.ddf", "DATA DESCRIPTOR FILE\nversion: 6"},
    {81, "a.raw", noise(64), {{"A.DDF", "DATA DESCRIPTOR FILE\n"}}},
    {0, "a.raw", noise(64), {{"a.ddf", "no such words"}}},
    {48, "a", noise(8) + "JEOLUSF001"},
    {66, "a", "x WIN NMR VERSION 1"},
    {67, "a", "\0\0NFT1"s},
    {67, "a", "DT01"},
    {68, "a", "JEOL.NMR\1\1"},
    {68, "a", "RMN.LOEJ\1\1"},
    {0, "a", " JEOL.NMR"},
    {73, "a.par", "! this file = x\nndim 2\n"},
    {0, "README", "In this file we tell"},
    // Words of 24 bits.
    {11, "w", "\x47\x84\xF5"},
    {29, "w", "\xF5\x84\x47\0"s},
    {19, "w", "\xF5\x84\x47\1"},
    {19, "w", "\xF5\x84\x47"},
    {20, "w", "\xC2\x05\x00"s},
    {64, "w", "\x83\x93\x4D"},
    {0, "w", "\x47\x84"},
    // Weaker marks.
    {78, "a.dat", noise(9), {{"a.PRM", "x"}}},
    {76, "a.ima", noise(96) + "SIEMENS"},
    {83, "a.RDA", ">>> Begin of header <<<\r\nStationName: SIEMENS\r\n"},
    {0, "a.txt", ">>> Begin of header <<<\r\n"},
    {77, "a", noise(200) + "GE MEDICAL"},
    {74, "a", noise(20) + "Elscint"},
    {75, "a.spar", spar},
    {75, "a.SDAT", noise(64), {{"a.spar", spar}}},
    {0, "a.sdat", noise(64)},
    {33, "a", "KEYS"},
    {33, "a", "title\nKEYS = 3\n"},
    {0, "a", "My KEYS\n"},
    {31, "a.fxq", noise(9)},
    // Extensions.
    {16, "a.GXD", noise(9), {{"a.gxp", "x"}}},
    {0, "a.gxd", noise(9)},
    {17, "a.bin", noise(9), {{"a.HDR", "x"}}},
    {0, "a.bin", noise(9), {{"b.hdr", "x"}}},
    {21, "a.MRD", noise(9)},
    {30, "a.pct", noise(9)},
    // Words of 20 bits; the length tells two formats apart, 40960 and 4 points as well as 1024.
    {2, "n", nicolet(0x2C72, 3840)},
    {1, "n", nicolet(0x2C72, 3440)},
    {2, "n", nicolet(0x2C72, 1285)},
    {4, "n", nicolet(0x3212, 99)},
    {3, "n", nicolet(0xE243, 99)},
    {6, "n", big_words({0x2C72})},
    {8, "n", big_words({0x3212})},
    {7, "n", big_words({0xE243})},
    // Native files, by their first and fourth word.
    {15, "n", "\4\3\2\1"s + padded("", 8)},
    {14, "n", native + padded("", 4)},
    {14, "n", native},
    {39, "n", native + "\1\0\0\0"s},
    {14, "n", "##TITLE=x\r\n##JCAMP-DXB  $$JCAMPDX Header and Binary Data\r\n##DATA CLASS= XYDATA\r\n"},
    // The weakest.
    {9, "a", "<block_size=1024>\n<groupnum = 3>\n"},
    {0, "a", "block_size=1024\n"},
    {10, "a.dat", noise(9), {{"a.HED", "x"}}},
    {10, "a.dat", noise(9), {{"a.h", "x"}}},
    {0, "a.h", noise(9)},
    {37, "a.spc", "\x20\x4B"},
    {37, "a", spectral('\x4B')},
    {37, "a", padded("\0\x4D\0\0\0\0\x80\x41"s, 256 + 64)},
    {0, "a", spectral('\x4B').substr(0, 512 + 63)},
    {0, "a", padded("\0\x4B\x20"s, 600)},
    {0, "a.spc", "\x20\x4F"},
    {0, "a.dat", noise(5000)},
    {0, "a", "\0"s}};

std::string put(const TemporaryFolder& folder, const Sample& sample) {
    for (const auto& [name, content] : sample.beside) folder.write(name, content);
    return folder.write(sample.file, sample.content);
}

TEST(Detection, EverySampleGivesItsFormat) {
    for (const Sample& sample : samples) {
        const TemporaryFolder folder;
        const Detection found = detect_format(put(folder, sample), false);
        EXPECT_EQ(found.format != nullptr ? found.format->number : 0, sample.number)
            << sample.file << " " << sample.content.substr(0, 40) << " by " << found.step << ": " << found.message;
    }
}

// The whole matrix: which tests of content accept which sample, whatever step comes first. A test accepts its own samples
// and no others.
TEST(Detection, ContentTestsAcceptTheirOwnSamplesOnly) {
    std::string others;
    for (const Sample& sample : samples) {
        const TemporaryFolder folder;
        Candidate file(put(folder, sample));
        ASSERT_TRUE(file.open());
        for (const Format& format : formats()) {
            if (format.test == nullptr) continue;
            const bool accepted = format.test(file), own = format.number == sample.number;
            if (accepted != own)
                others += format_text("%d%s %s; ", format.number, accepted ? " takes" : " misses", sample.file.c_str());
        }
    }
    EXPECT_EQ(others, "69 takes fid; 47 takes a.ima; ");  // where an earlier step decides
}

// What stops a detection, in the order of the steps.
TEST(Detection, StopsAtNativeFilesAndUnreadableOnes) {
    const std::string found = "Keyword of translated CDFF file found.";
    const Sample stopped[] = {{0, "fid", native},
                              {0, "FID", "##TITLE=x\r\n##JCAMP-DXB  $$JCAMPDX Header and Binary Data\r\n"},
                              {0, "a.gxd", native, {{"a.gxp", "x"}}},
                              {0, "a.bin", native, {{"a.hdr", "x"}}},
                              {0, "a.mrd", native},
                              {0, "a.PCT", native}};
    for (const Sample& sample : stopped) {
        const TemporaryFolder folder;
        const Detection detection = detect_format(put(folder, sample));
        EXPECT_TRUE(detection.format == nullptr && detection.message == found) << sample.file << detection.message;
    }
    const TemporaryFolder folder;
    fs::create_symlink("/dev/zero", folder.path("zero"));
    fs::create_symlink(folder.path("self"), folder.path("self"));
    fs::create_directory(folder.path("fid"));
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    for (const char* name : {"zero", "self", "pipe", "fid", "none"}) {
        const Detection detection = detect_format(folder.path(name));
        EXPECT_EQ(detection.message, "Unable to open file pointer for " + folder.path(name) + ".") << detection.step;
    }
    const std::string path = folder.write("what.dat", noise(9));
    EXPECT_EQ(detect_format(path).message, "Unknown data source for " + path + "\n Don't know what to do with it!!!\n");
}

// Whatever is cut off or flipped, a detection ends; the sanitizers watch it.
TEST(Detection, SurvivesTruncatedAndBrokenFiles) {
    const TemporaryFolder folder;
    for (const Sample& sample : samples) {
        std::string bytes = sample.content;
        for (const size_t length : {size_t{0}, size_t{1}, size_t{2}, size_t{3}, size_t{7}, bytes.size() / 2, bytes.size() - 1}) {
            const Detection found =
                detect_format(folder.write(sample.file, bytes.substr(0, std::min(length, bytes.size()))), false);
            EXPECT_TRUE(found.format != nullptr || !found.message.empty()) << sample.file << " " << length;
        }
        for (size_t i = 0; i < std::min<size_t>(bytes.size(), 6); ++i) bytes[i] = static_cast<char>(bytes[i] ^ 0x80);
        const Detection found = detect_format(folder.write(sample.file, bytes), false);
        EXPECT_TRUE(found.format != nullptr || !found.message.empty()) << sample.file;
    }
}

TEST(Detection, FoldersStandForTheirData) {
    const TemporaryFolder folder;
    for (const char* file :
         {"raw/10/fid", "raw/10/pdata/1/1r", "done/3/pdata/1/2rr", "v.fid/FID", "many/1/ser", "many/2/fid", "none/x/fid"})
        folder.write(file, "x");
    folder.write("void/fid", "");
    const std::pair<std::string, std::string> rows[] = {{"raw/10", "raw/10/fid"},
                                                        {"raw", "raw/10/fid"},
                                                        {"raw/10/pdata", "raw/10/pdata/1/1r"},
                                                        {"raw/10/pdata/1", "raw/10/pdata/1/1r"},
                                                        {"done", "done/3/pdata/1/2rr"},
                                                        {"v.fid", "v.fid/FID"},
                                                        {"many", " holds several experiments (1, 2). Name one of them."},
                                                        {"none", " holds no data file"},
                                                        {"void", "/fid is empty."}};
    for (const auto& [named, wanted] : rows) {
        std::string reason;
        const std::string found = data_file_of(folder.path(named), reason);
        EXPECT_TRUE(found.empty() ? reason.find(wanted) != std::string::npos : found == folder.path(wanted))
            << named << found << reason;
    }
}

}  // namespace
}  // namespace zolt
