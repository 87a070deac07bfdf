#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <random>

#include "loamshow/commands/Interrupts.h"
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

TEST(Printer, KeysEntriesByNumbers) {
  std::string expected;
  const std::string got = printed(json, [&](auto& printer) {
    tabula::Attr32Info row("row", printer);
    tabula::Attr64Info count("count", printer);
    tabula::StringAttrInfo name("name", printer);
    printer.start();
    printer.startDict("rows");
    for (U32 i = 0; i < 5000; ++i) {  // more than the buffer holds
      row.setValue(i);
      count.setValue(7ULL * i);
      name.setValue("n");
      printer.startDictEntry(row);
      printer.template addArgs<"%llu">(count.getArg());
      printer.template addArgs<"%s %u">(name.getArg(), row.getArg());
      printer.endDictEntry();
      expected += line(R"(%s"%u":{"count":%u,"name":"n","row":%u})", i == 0 ? "" : ",", i, 7 * i, i);
    }
    printer.endDict();
    for (U32 i = 0; i < 20'000; ++i) {  // numbers only
      printer.template addArgs<"%llu">(count.getArg());
    }
    printer.end();
  });
  std::string numbers;
  for (U32 i = 0; i < 20'000; ++i) numbers += R"(,"count":34993)";
  EXPECT_EQ(got, R"({"rows":{)" + expected + "}" + numbers + "}\n");
}

template <class Cut>
void expectDigits(U64 number) {
  const std::string expected = line("%016llu", static_cast<unsigned long long>(number));
  const Cut cut(number);
  std::string digits(16, '?');
  cut.add(std::string(16, '0').data(), digits.data());
  ASSERT_EQ(digits, expected);
  ASSERT_EQ(cut.leadingZeros(), std::min<std::size_t>(expected.find_first_not_of('0'), 15)) << number;
}

// Both implementations: with wide registers, if the processor has them, and without.
TEST(Digits, AreThoseOfTheNumber) {
  using namespace tabula;
  std::mt19937_64 random(1);
  const auto expect = [](U64 number) {
    expectDigits<detail::SixteenDigits>(number);
    expectDigits<detail::DigitsInWords>(number);
  };
  for (U64 fours = 0; fours < 10'000; ++fours) {
    expect(fours * 1'0000'0000'0000 + fours * 1'0000'0000 + (9999 - fours) * 1'0000 + fours);
  }
  for (int i = 0; i < 10'000; ++i) expect(random() % detail::tenTo16);
  U64 power = 1;
  for (std::size_t digits = 1; digits <= mostDigits; ++digits, power *= 10) {
    for (const U64 number : {power - 1, power, power / 9 * 8 + 1}) {
      EXPECT_EQ(NumberText(Arg(number)).view(), std::to_string(number));
      if (number < detail::tenTo16) expect(number);
    }
  }
}

TEST(Printer, EscapesNamesAndValuesInJson) {
  std::vector<std::pair<std::string, std::string>> cases = {
      {{"q\"\\/\b\f\n\r\t\x10\x1f\x7f\0", 13}, "q\\\"\\\\/\\b\\f\\n\\r\\t\\u0010\\u001f\x7f\\u0000"},
      {"\xc3\xa4\xf0\x9f\x98\x80", "ä😀"},
      {"\"2345678 and more, \"8", "\\\"2345678 and more, \\\"8"},
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
      printer.template addFrills<"heading %s\n">("x");
      printer.start();
      printer.startDict(raw);
      printer.startDictEntry(info);
      printer.template addArgs<"%s %s">(info.getArg(), info.getArg());
      printer.endDictEntry();
      printer.endDict();
      printer.startSubmodel("empty");
      printer.endSubmodel();
      printer.end();
    });
    const std::string member = '"' + escaped + "\":\"" + escaped + '"';
    EXPECT_EQ(got,
              "{\"" + escaped + "\":{\"" + escaped + "\":{" + member + "," + member + "}},\"empty\":{}}\n");
  }
}

template <tabula::FixedString format, class Arg>
concept AddsArg = requires(tabula::Printer& printer, const Arg& arg) {
  printer.addArgs<format>(arg);
};

TEST(Printer, WritesEachDescriptorInConversionsOfItsTypeOnly) {
  for (const auto& [format, expected] :
       {std::pair{text, "    7|9|t    |"}, std::pair{json, R"({"word":7,"long":9,"text":"t"})"}}) {
    EXPECT_EQ(printed(format,
                      [](auto& printer) {
                        tabula::Attr32Info word("word", printer);
                        tabula::Attr64Info number("long", printer);
                        tabula::StringAttrInfo name("text", printer);
                        word.setValue(7);
                        number.setValue(9);
                        name.setValue("t");
                        printer.start();
                        printer.template addArgs<"%5u|%llu|%-5s|">(word.getArg(), number.getArg(),
                                                                   name.getArg());
                        printer.end();
                      }),
              std::string(expected) + (format == json ? "\n" : ""));
  }
  using Word = decltype(std::declval<tabula::Attr32Info>().getArg());
  using Name = decltype(std::declval<tabula::StringAttrInfo>().getArg());
  static_assert(AddsArg<"%u", Word> && !AddsArg<"%s", Word> && !AddsArg<"%d", Word>);
  static_assert(AddsArg<"%s", Name> && !AddsArg<"%u", Name>);
  // The kind of an Arg is known at run time only.
  static_assert(!AddsArg<"%s", tabula::Arg> && !AddsArg<"%u", tabula::Arg>);
  static_assert(!AddsArg<"%u", bool> && !AddsArg<"%u %u", U32> && !AddsArg<"", U32>);
}

TEST(Printer, RefusesBrokenNesting) {
  using tabula::Printer;
  const auto start = [](Printer& printer) { printer.start(); };
  const auto startDict = [](Printer& printer) { printer.startDict("d"); };
  const auto startSubmodel = [](Printer& printer) { printer.startSubmodel("s"); };
  const auto end = [](Printer& printer) { printer.end(); };
  const auto textMember = [](Printer& printer) {
    tabula::StringAttrInfo info("a", printer);
    info.setValue("text");
    printer.addArgs<"%s">(info.getArg());
  };
  const auto noDescriptor = [](Printer& printer) { printer.addArgs<"%s">("n/a"); };
  const auto noValue = [](Printer& printer) { tabula::Attr64Info("a", printer).getArg(); };
  const auto textAsNumber = [](Printer& printer) {
    tabula::StringAttrInfo info("a", printer);
    info.setValue("text");
    static_cast<tabula::Attr32Info&>(info).getArg();
  };
  const std::pair<const char*, std::vector<std::function<void(Printer&)>>> cases[] = {
      {"insideObject", {start, startDict, startSubmodel}},
      {"insideObject", {startSubmodel}},
      {"insideObject", {start, startDict, textMember}},
      {"closesInnermost", {start, startDict, end}},
      {"everyScopeClosed", {start}},
      {"startedOnce", {start, end, start}},
      {"startedOnce", {start, start}},
      {"isDescriptor", {start, noDescriptor}},
      {"hasValue", {noValue}},
      {"isOfItsKind", {textAsNumber}}};
  for (const auto& [message, steps] : cases) {
    const auto take = [&calls = steps](Printer& printer) {
      for (const auto& call : calls) call(printer);
    };
    EXPECT_DEATH(printed(json, take), message);
  }
}

/// What `work` writes to standard output.
std::string said(const std::function<void()>& work) {
  testing::internal::CaptureStdout();
  work();
  return testing::internal::GetCapturedStdout();
}

/// Writes a line through a Printer without closing it, with or without an interrupt.
void printUnclosed(int fd, bool interrupted) {
  tabula::Printer printer(fd, text, true, false, true, 0);
  printer.addFrills<"never closed\n">();
  if (interrupted) tabula::interrupt();
}

TEST(Printer, LosesNothingSilentlyWhenItIsNotClosed) {
  const MemoryFile file;
  const int full = ::open("/dev/full", O_WRONLY);
  for (const bool interrupted : {true, false}) {
    for (const int fd : {file.fd(), full}) {
      const bool fails = fd == full && !interrupted;
      testing::internal::CaptureStderr();
      printUnclosed(fd, interrupted);
      EXPECT_EQ(testing::internal::GetCapturedStderr(),
                fails ? "cannot write the answer: No space left on device\n" : "");
      EXPECT_EQ(said([] { tabula::endingOnInterrupt([] {}); }),
                interrupted ? "exiting interrupted by user\n" : "");
    }
    EXPECT_EQ(file.content(), interrupted ? "" : "never closed\n");
  }
  ::close(full);
}

TEST(Interrupts, SignalsChangeNothingOnceTheHostIsDone) {
  const auto signalled = [] {
    { const loamshow::Interrupts interrupts; }
    std::raise(SIGINT);
    std::raise(SIGALRM);
    std::_Exit(tabula::interruptPending() ? 1 : 0);
  };
  EXPECT_EXIT(signalled(), testing::ExitedWithCode(0), "");
}

TEST(Interrupts, EndTheOperationThatTheyComeTo) {
  const auto print = [] { printed(text, [](auto& printer) { printer.template addFrills<"row\n">(); }); };
  /// Interrupts again while the operation releases its resources.
  struct Again {
    ~Again() { tabula::interrupt(); }
  };
  struct Case {
    const char* name;
    std::function<void()> work;
    bool interrupted;
    bool raises;
  };
  const Case cases[] = {
      {"none", print, false, false},
      {"one", [&] { tabula::interrupt(), print(); }, true, false},
      {"two",
       [&] {
         const Again again;
         tabula::interrupt(), print();
       },
       true, false},
      {"after the last byte", [&] { print(), tabula::interrupt(); }, true, false},
      {"beside an exception",
       [&] {
         const Again again;
         throw std::runtime_error("broken");
       },
       true, true},
  };
  for (const auto& [name, work, interrupted, raises] : cases) {
    SCOPED_TRACE(name);
    bool raised = false;
    const std::string line = said([&, &operation = work] {
      try {
        tabula::endingOnInterrupt(operation);
      } catch (const std::runtime_error&) {
        raised = true;
      }
    });
    EXPECT_EQ(raised, raises);
    EXPECT_EQ(line, interrupted && !raises ? "exiting interrupted by user\n" : "");
    EXPECT_EQ(tabula::operationInterrupted(), interrupted);
    EXPECT_FALSE(tabula::interruptPending());
  }
}

}  // namespace

}  // namespace loamtest
