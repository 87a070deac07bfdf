#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

#include <functional>

#include "platform/tabula.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

constexpr U32 text = tabula::formatText;
constexpr U32 json = tabula::formatJson;

/// The output of the calls.
template <class Calls>
std::string printed(U32 format, Calls calls) {
  const MemoryFile file;
  tabula::Printer printer(file.fd(), format, true, false, true, 0);
  calls(printer);
  printer.close();
  return file.content();
}

TEST(Printer, CarriesTextLargerThanItsBuffer) {
  const std::string wide(150'000, 'w');
  std::string expected;
  const std::string got = printed(text, [&](auto& printer) {
    for (U32 i = 0; i < 5000; ++i) {
      EXPECT_EQ(printer.template addFrills<"%-30s %17llu\n">("row", U64{i}), 49);
      expected += line("%-30s %17u\n", "row", i);
    }
    EXPECT_EQ(printer.template addFrills<"[%s]">(wide), 150'002);
    EXPECT_EQ(printer.template addFrills<"%*u|%-*u.">(100'000U, 7U, 70'000U, 8U), 170'002);
    EXPECT_EQ(printer.template addFrills<"%d %d">(0, -3), 4);
  });
  EXPECT_EQ(got, expected + "[" + wide + "]" + line("%100000u|%-70000u.", 7, 8) + "0 -3");
}

TEST(Printer, CarriesJsonLargerThanItsBuffer) {
  std::string expected;
  const std::string got = printed(json, [&](auto& printer) {
    tabula::Attr32Info row("row", printer);
    tabula::Attr64Info count("count", printer);
    printer.start();
    printer.startDict("rows");
    for (U32 i = 0; i < 20'000; ++i) {
      row.setValue(i);
      count.setValue(7ULL * i);
      printer.startDictEntry(row);
      printer.template addArgs<"%llu %llu">(count.getArg(), count.getArg());
      printer.endDictEntry();
      expected += line(R"(,"%u":{"count":%u,"count":%u})", i, 7 * i, 7 * i);
    }
    printer.endDict();
    printer.end();
  });
  EXPECT_EQ(got, R"({"rows":{)" + expected.substr(1) + "}}\n");
}

TEST(Digits, AreThoseOfTheNumber) {
  using namespace tabula;
  std::vector<U64> numbers;
  for (U64 fours = 0; fours < 10'000; ++fours) {
    numbers.push_back(fours * 1'0001'0000'0001 + (9999 - fours) * 1'0000);
  }
  for (U64 power = 1, digits = 1; digits <= mostDigits; ++digits, power *= 10) {
    numbers.insert(numbers.end(), {power - 1, power, power / 9 * 8 + 1});
  }
  for (const U64 number : numbers) {
    ASSERT_EQ(NumberText(Arg(number)).view(), std::to_string(number));
    if (number >= detail::tenTo16) continue;
    // As processors without wide registers write it.
    const std::string expected = line("%016lu", number);
    const detail::DigitsInWords words(number);
    std::string digits(16, '0');
    words.add(digits.data(), digits.data());
    ASSERT_EQ(digits, expected);
    ASSERT_EQ(words.leadingZeros(), std::min<std::size_t>(expected.find_first_not_of('0'), 15));
  }
}

TEST(Printer, EscapesNamesAndValuesInJson) {
  std::vector<std::pair<std::string, std::string>> cases = {
      {{"q\"\\/\b\f\n\r\t\x10\x1f\x7f\0", 13}, "q\\\"\\\\/\\b\\f\\n\\r\\t\\u0010\\u001f\x7f\\u0000"},
      // The first and the last characters of two, three and four bytes.
      {"\u0080\u07ff\u0800\ud7ff\ue000\uffff\U00010000\U0010ffff",
       "\u0080\u07ff\u0800\ud7ff\ue000\uffff\U00010000\U0010ffff"},
      // Invalid: continuation byte, overlong, surrogate, above U+10FFFF, truncated.
      {"\x80|\xc0\xaf|\xed\xa0\x80|\xf4\x90\x80\x80|\xe2\x82", "�|��|���|����|�"}};
  for (std::size_t size = 1; size <= 17; ++size) {
    for (std::size_t at = 0; at < size; ++at) {
      const std::string before(at, 'x');
      const std::string after(size - at - 1, 'y');
      cases.emplace_back(before + '"' + after, before + "\\\"" + after);
    }
  }
  for (const auto& [given, escaped] : cases) {
    const std::string got = printed(json, [&raw = given](auto& printer) {
      tabula::StringAttrInfo info(raw, printer);
      info.setValue(raw);
      printer.start();
      printer.startSubmodel(raw);
      printer.template addArgs<"%s">(info.getArg());
      printer.endSubmodel();
      printer.end();
    });
    const std::string quoted = '"' + escaped + '"';
    EXPECT_EQ(got, "{" + quoted + ":{" + quoted + ":" + quoted + "}}\n");
  }
}

// Descriptors go into conversions of their type only. The kind of an Arg is known at run time only.
using tabula::FormatOf;
static_assert(FormatOf<"%u", tabula::NumberArg> && !FormatOf<"%s", tabula::NumberArg>);
static_assert(FormatOf<"%s", tabula::TextArg> && !FormatOf<"%u", tabula::TextArg>);
static_assert(!FormatOf<"%s", tabula::Arg> && !FormatOf<"%u", tabula::Arg> && !FormatOf<"%d", U32>);
static_assert(!FormatOf<"%u", bool> && !FormatOf<"%u %u", U32> && !FormatOf<"", U32>);

TEST(Printer, RefusesBrokenNesting) {
  using tabula::Printer;
  const auto expectDeath = [](const char* message, void (*calls)(Printer&)) {
    EXPECT_DEATH(printed(json, calls), message);
  };
  expectDeath("insideObject", [](Printer& out) { out.startSubmodel("s"); });
  expectDeath("insideObject", [](Printer& out) { out.start(), out.startDict("d"), out.startSubmodel("s"); });
  static constexpr auto addText = [](Printer& out) {
    tabula::StringAttrInfo info("a", out);
    info.setValue("text");
    out.addArgs<"%s">(info.getArg());
    static_cast<tabula::Attr32Info&>(info).getArg();
  };
  expectDeath("insideObject", [](Printer& out) { out.start(), out.startDict("d"), addText(out); });
  expectDeath("isOfItsKind", [](Printer& out) { out.start(), addText(out); });
  expectDeath("closesInnermost", [](Printer& out) { out.start(), out.startDict("d"), out.end(); });
  expectDeath("everyScopeClosed", [](Printer& out) { out.start(); });
  expectDeath("startedOnce", [](Printer& out) { out.start(), out.start(); });
  expectDeath("startedOnce", [](Printer& out) { out.start(), out.end(), out.start(); });
  expectDeath("isDescriptor", [](Printer& out) { out.start(), out.addArgs<"%s">("n/a"); });
  expectDeath("hasValue", [](Printer& out) { tabula::Attr64Info("a", out).getArg(); });
}

/// What `work` writes to standard output.
std::string said(const std::function<void()>& work) {
  testing::internal::CaptureStdout();
  work();
  return testing::internal::GetCapturedStdout();
}

TEST(Printer, LosesNothingSilentlyWhenItIsNotClosed) {
  const MemoryFile file;
  const int full = ::open("/dev/full", O_WRONLY);
  for (const bool interrupted : {true, false}) {
    for (const int fd : {file.fd(), full}) {
      testing::internal::CaptureStderr();
      {
        tabula::Printer printer(fd, text, true, false, true, 0);
        printer.addFrills<"never closed\n">();
        if (interrupted) tabula::interrupt();
      }
      const bool fails = fd == full && !interrupted;
      EXPECT_EQ(testing::internal::GetCapturedStderr(),
                fails ? "cannot write the answer: No space left on device\n" : "");
      EXPECT_EQ(said([] { tabula::endingOnInterrupt([] {}); }),
                interrupted ? "exiting interrupted by user\n" : "");
    }
    EXPECT_EQ(file.content(), interrupted ? "" : "never closed\n");
  }
  ::close(full);
}

TEST(Interrupts, EndTheOperationThatTheyComeTo) {
  const auto print = [] { printed(text, [](auto& printer) { printer.template addFrills<"row\n">(); }); };
  /// Interrupts again while the operation releases its resources.
  struct Again {
    ~Again() { tabula::interrupt(); }
  };
  const auto twice = [&] {
    const Again again;
    tabula::interrupt(), print();
  };
  const auto besideAnException = [] {
    const Again again;
    throw std::runtime_error("broken");
  };
  const auto outcome = [](const std::function<void()>& work) {
    const std::string out = said([&] {
      try {
        tabula::endingOnInterrupt(work);
      } catch (const std::runtime_error& error) {
        std::cout << error.what() << '\n';
      }
    });
    return out + (tabula::operationInterrupted() ? "interrupted" : "") +
           (tabula::interruptPending() ? ", and the next one" : "");
  };
  const std::string exiting = "exiting interrupted by user\ninterrupted";
  EXPECT_EQ(outcome(print), "");
  EXPECT_EQ(outcome([&] { print(), tabula::interrupt(); }), exiting);
  EXPECT_EQ(outcome(twice), exiting);
  EXPECT_EQ(outcome(besideAnException), "broken\ninterrupted");
}

}  // namespace

}  // namespace loamtest
