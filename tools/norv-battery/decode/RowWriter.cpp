#include "decode/RowWriter.h"

#include <algorithm>
#include <array>
#include <string>

#include "battery/NorvBatteryInfo.h"
#include "decode/BlockReader.h"
#include "decode/CsvSink.h"
#include "decode/JsonSink.h"
#include "output/BatteryFields.h"
#include "output/EscapeText.h"
#include "output/TextLines.h"
#include "report/AskedBattery.h"
#include "report/ReadReport.h"
#include "report/TextBattery.h"

namespace norv::tool {

using shared::battery::NorvBatteryInfo;

namespace {

template <typename Sink>
void WriteOrigin(Sink& sink, const RowOrigin& origin) {
  sink.Utf8("source", origin.source);
  sink.Number("index", origin.index);
  sink.Utf8("id", origin.id);
}

// Whether it can be trusted comes before what a block says.
template <typename Sink>
void WriteBattery(Sink& sink, const AskedBattery& battery) {
  const auto isValidity = [](const fields::Group& group) { return group == fields::kValidity; };
  WriteGroups(sink, battery, isValidity);
  WriteGroups(sink, battery, [=](const fields::Group& group) { return !isValidity(group); });
}

template <typename Sink>
void WriteFields(Sink sink, const RowOrigin& origin, NorvBatteryInfo& battery) {
  sink.BeginRow();
  WriteOrigin(sink, origin);
  sink.Null("rowError");
  WriteBattery(sink, AskedBattery(battery));
  sink.EndRow();
}

template <typename Sink>
void WriteProblem(Sink sink, const RowOrigin& origin, std::string_view problem) {
  sink.BeginRow();
  WriteOrigin(sink, origin);
  sink.Utf8("rowError", problem);
  sink.EndRow();
}

std::string TextHeading(const RowOrigin& origin) {
  const std::string id = origin.id ? " (" + EscapeText(*origin.id) + ")" : "";
  return EscapeText(origin.source) + ", row " + std::to_string(origin.index) + id;
}

void WriteText(const RowOrigin& origin, NorvBatteryInfo& battery, OutputBuffer& output) {
  TextLines lines;
  lines.Heading(TextHeading(origin));
  AddBlock(lines, ReadBattery(0, battery));
  output.Append(lines.Text());
}

void WriteTextProblem(const RowOrigin& origin, std::string_view problem, OutputBuffer& output) {
  TextLines lines;
  lines.Heading(TextHeading(origin));
  lines.Line("Not decoded: " + std::string(problem));
  output.Append(lines.Text());
}

// A line of the head's length tells programs that count fields what a bad row lacks.
std::string HeadLine() {
  constexpr std::array<unsigned char, kBlockSize> kAnyBlock{};
  OutputBuffer head;
  NorvBatteryInfo battery(kAnyBlock.data());
  WriteFields(CsvHeadSink(head), {"", 0, std::nullopt}, battery);
  return std::string(head.View());
}

// Commas for the fields of a battery, which a bad row has none of.
const std::string& MissingFields() {
  constexpr std::size_t kFieldsOfBadRow = 4;
  static const std::string commas = [] {
    const std::string head = HeadLine();
    return std::string(static_cast<std::size_t>(std::count(head.begin(), head.end(), ',')) + 1 - kFieldsOfBadRow, ',');
  }();
  return commas;
}

void WriteCsvProblem(const CsvSink& sink, const RowOrigin& origin, std::string_view problem, OutputBuffer& output) {
  WriteProblem(sink, origin, problem);
  output.ReplaceLast(',');
  output.Append(MissingFields());
  output.ReplaceLast('\n');
}

}  // namespace

void WriteHead(RowFormat format, OutputBuffer& output) {
  if (format == RowFormat::Csv || format == RowFormat::RawCsv) {
    output.Append(HeadLine());
  }
}

void WriteRow(RowFormat format, const RowOrigin& origin, const unsigned char* block, OutputBuffer& output) {
  NorvBatteryInfo battery(block);
  switch (format) {
    case RowFormat::JsonLines:
      WriteFields(JsonSink(output), origin, battery);
      break;
    case RowFormat::Csv:
      WriteFields(CsvSink(output), origin, battery);
      break;
    case RowFormat::RawCsv:
      WriteFields(CsvSink(output, CsvTexts::Raw), origin, battery);
      break;
    case RowFormat::Text:
      WriteText(origin, battery, output);
      break;
  }
}

void WriteBadRow(RowFormat format, const RowOrigin& origin, std::string_view problem, OutputBuffer& output) {
  switch (format) {
    case RowFormat::JsonLines:
      WriteProblem(JsonSink(output), origin, problem);
      break;
    case RowFormat::Csv:
      WriteCsvProblem(CsvSink(output), origin, problem, output);
      break;
    case RowFormat::RawCsv:
      WriteCsvProblem(CsvSink(output, CsvTexts::Raw), origin, problem, output);
      break;
    case RowFormat::Text:
      WriteTextProblem(origin, problem, output);
      break;
  }
}

}  // namespace norv::tool
