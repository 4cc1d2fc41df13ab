#include "decode/BlockReader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

namespace norv::tool {
namespace {

class BlockReaderTest : public testing::Test {
 protected:
  BlockReaderTest() : path_(testing::TempDir() + "norv-block-reader-" + UniqueName()) {}
  ~BlockReaderTest() override { std::remove(path_.c_str()); }

  const std::string& Write(const std::string& contents) {
    std::ofstream(path_, std::ios::binary) << contents;
    return path_;
  }

  std::vector<Portion> Read(const std::string& contents, std::optional<InputKind> kind = std::nullopt) {
    BlockReader reader({Write(contents)}, kind);
    std::vector<Portion> portions;
    for (Portion portion; reader.Read(portion);) {
      EXPECT_LE(portion.bytes.size(), Portion::kLargest);
      portions.push_back(portion);
    }
    EXPECT_EQ(reader.BytesRead(), contents.size());
    return portions;
  }

  static std::string Joined(const std::vector<Portion>& portions) {
    std::string text;
    for (const Portion& portion : portions) {
      text.append(portion.bytes.begin(), portion.bytes.end());
    }
    return text;
  }

 private:
  static std::string UniqueName() { return testing::UnitTest::GetInstance()->current_test_info()->name(); }

  std::string path_;
};

TEST_F(BlockReaderTest, TellsBlocksFromText) {
  EXPECT_EQ(Read(std::string(128, '\0'))[0].kind, InputKind::Binary);
  EXPECT_EQ(Read("\x01")[0].kind, InputKind::Binary);
  EXPECT_EQ(Read("00 11\tff\r\n")[0].kind, InputKind::Hexadecimal);
  EXPECT_EQ(Read("A")[0].kind, InputKind::Hexadecimal);
  EXPECT_EQ(Read("A", InputKind::Binary)[0].kind, InputKind::Binary);
  EXPECT_EQ(Read(std::string(128, '\0'), InputKind::Hexadecimal)[0].kind, InputKind::Hexadecimal);
}

TEST_F(BlockReaderTest, SetBitsAreNoText) {
  EXPECT_EQ(Read(std::string(128, '\xFF'))[0].kind, InputKind::Binary);
  EXPECT_EQ(Read("L'Ha\xFF-les-Roses,00\n")[0].kind, InputKind::Hexadecimal);
}

TEST_F(BlockReaderTest, DumpsBecomeBlocks) {
  std::string dump;
  for (const char* offset : {"00000000", "00000040"}) {
    dump += std::string(offset) + ": " + std::string(128, '4') + "  " + std::string(64, 'D') + "\n";
  }
  const auto portions = Read(dump);
  EXPECT_EQ(portions[0].kind, InputKind::Binary);
  EXPECT_EQ(Joined(portions), std::string(128, 'D'));
  EXPECT_TRUE(portions.back().problem.empty()) << portions.back().problem;
}

TEST_F(BlockReaderTest, RepeatedLinesOfADumpMakePortionsOfABoundedSize) {
  constexpr std::size_t kRepeats = 200;
  std::ostringstream dump;
  for (std::size_t repeat = 0; repeat <= kRepeats; ++repeat) {
    dump << std::hex << std::setw(8) << std::setfill('0') << repeat * Portion::kLargest;
    dump << (repeat < kRepeats ? "  00 00 00 00  |....|\n*\n" : "\n");
  }
  BlockReader reader({Write(dump.str())}, std::nullopt);
  std::size_t size = 0;
  for (Portion portion; reader.Read(portion);) {
    EXPECT_LE(portion.bytes.size(), 2 * Portion::kLargest);
    EXPECT_EQ(portion.firstRow, size / kBlockSize);
    size += portion.bytes.size();
  }
  EXPECT_EQ(size, kRepeats * Portion::kLargest);
}

TEST_F(BlockReaderTest, Utf16IsReadAsUtf8) {
  using std::string_literals::operator""s;
  EXPECT_EQ(Joined(Read("\xFF\xFE\xFC\0,\0\x30\0\n\0"s)), "\xC3\xBC,0\n");
  EXPECT_EQ(Joined(Read("\xFE\xFF\0\xFC\0,\0\x30\0\n"s)), "\xC3\xBC,0\n");
  EXPECT_EQ(Read("\xFF\xFE\0\0"s)[0].kind, InputKind::Binary);
}

TEST_F(BlockReaderTest, SourceWithoutAnythingIsNoInput) {
  for (const char* contents : {"", "\n \n", "[{}]"}) {
    const auto portions = Read(contents);
    EXPECT_TRUE(portions.back().isNoInput) << contents;
  }
  EXPECT_FALSE(Read("7").back().isNoInput);
}

TEST_F(BlockReaderTest, PortionsAreWholeBlocks) {
  const std::string contents(3 * Portion::kLargest + 5 * kBlockSize + 7, '\x02');
  const auto portions = Read(contents);
  EXPECT_EQ(Joined(portions), contents);
  std::uint64_t row = 0;
  std::uint64_t offset = 0;
  for (std::size_t number = 0; number < portions.size(); ++number) {
    EXPECT_EQ(portions[number].firstRow, row);
    EXPECT_EQ(portions[number].firstPlace, offset);
    EXPECT_TRUE(portions[number].problem.empty());
    row += portions[number].bytes.size() / kBlockSize;
    offset += portions[number].bytes.size();
    EXPECT_TRUE(number + 1 == portions.size() || portions[number].bytes.size() % kBlockSize == 0);
  }
}

TEST_F(BlockReaderTest, PortionsAreWholeLinesAndBlankOnesAreNoRows) {
  std::string contents;
  for (int line = 0; line < 1000; ++line) {
    contents += line % 10 == 0 ? "  \r\n" : std::string(200 + static_cast<std::size_t>(line % 90), 'f') + '\n';
  }
  const auto portions = Read(contents + "00");
  EXPECT_EQ(Joined(portions), contents + "00");
  ASSERT_GT(portions.size(), 3U);
  for (std::size_t number = 0; number + 1 < portions.size(); ++number) {
    EXPECT_EQ(portions[number].bytes.back(), '\n');
    const std::uint64_t lines = portions[number + 1].firstPlace - 1;
    EXPECT_EQ(portions[number + 1].firstRow, lines - (lines + 9) / 10);
  }
}

TEST_F(BlockReaderTest, LineLongerThanAPortionIsOneProblem) {
  const auto portions = Read("00\n" + std::string(10 * Portion::kLargest, 'a') + "\n11\n");
  std::string problems;
  for (const Portion& portion : portions) {
    problems += portion.problem;
  }
  EXPECT_EQ(problems, "line 2 is longer than 32768 characters: expected 256 hexadecimal digits");
  EXPECT_EQ(Joined(portions), "00\n11\n");
  EXPECT_EQ(portions.back().firstRow, 2U);
  EXPECT_EQ(portions.back().firstPlace, 3U);
}

TEST_F(BlockReaderTest, LongLineWithoutAnEnd) {
  const auto portions = Read(std::string(2 * Portion::kLargest + 1, 'a'));
  EXPECT_EQ(Joined(portions), "");
  EXPECT_EQ(portions.front().problem, "line 1 is longer than 32768 characters: expected 256 hexadecimal digits");
}

TEST_F(BlockReaderTest, LineAsLongAsAPortionIsRead) {
  const std::string contents = std::string(Portion::kLargest - 1, 'a') + "\n";
  EXPECT_EQ(Joined(Read(contents + contents)), contents + contents);
}

TEST_F(BlockReaderTest, ByteOrderMarkIsNoDigit) {
  EXPECT_EQ(Joined(Read("\xEF\xBB\xBF"
                        "00\n")),
            "00\n");
}

TEST_F(BlockReaderTest, EmptySourceIsAProblem) {
  const auto portions = Read("");
  ASSERT_EQ(portions.size(), 1U);
  EXPECT_TRUE(portions[0].problem.starts_with("is empty"));
}

TEST(BlockReader, MissingSourceDoesNotEndTheOthers) {
  BlockReader reader({"/missing/1", "/missing/2"}, std::nullopt);
  Portion portion;
  for (const char* source : {"/missing/1", "/missing/2"}) {
    ASSERT_TRUE(reader.Read(portion));
    EXPECT_EQ(portion.source, source);
    EXPECT_TRUE(portion.problem.starts_with("cannot be opened: ")) << portion.problem;
  }
  EXPECT_FALSE(reader.Read(portion));
}

}  // namespace
}  // namespace norv::tool
