#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <thread>

#include "platform/tabula.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

constexpr U32 text = tabula::formatText;
constexpr U32 json = tabula::formatJson;

/// What the calls write.
template <class Calls>
std::string printed(U32 format, Calls calls) {
  const MemoryFile file;
  tabula::Printer printer(file.fd(), format, true, false, true, 0);
  calls(printer);
  printer.close();
  return file.content();
}

TEST(Format, LiteralFormatsAreTheSameEngine) {
  const std::string name = "Ethernet1/1";
  EXPECT_EQ(printed(text,
                    [&](auto& printer) {
                      printer.template addFrills<"%-5s|%5s|%-20s|%.3s|%%|%-*s|%hu\n">(name, "ab", name, name,
                                                                                      14U, name, U16{7});
                      printer.template addFrills<"%5u|%-5u|%d|%llu">(123456U, 12U, -5, ~U64{0});
                    }),
            line("%-5s|%5s|%-20s|%.3s|%%|%-*s|%d\n", name.c_str(), "ab", name.c_str(), name.c_str(), 14,
                 name.c_str(), 7) +
                line("%5u|%-5u|%d|%llu", 123456U, 12U, -5, ~0ULL));
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
  });
  EXPECT_EQ(got, expected + "[" + wide + "]" + line("%100000u|%-70000u.", 7, 8));
}

TEST(Printer, JsonEscapesAndNests) {
  EXPECT_EQ(printed(json,
                    [](auto& printer) {
                      tabula::StringAttrInfo name("na\"me", printer);
                      tabula::Attr32Info word("word", printer);
                      tabula::Attr64Info count("count", printer);
                      printer.template addFrills<"heading %s\n">("x");
                      printer.start();
                      printer.startDict("d\n");
                      for (const std::string_view value :
                           {std::string_view("q\"\\/\b\f\n\r\t\x01\x7f\0", 12),
                            std::string_view("\xc3\xa4\xf0\x9f\x98\x80"),
                            // Broken: alone, overlong, surrogate, above the last, cut off.
                            std::string_view("\x80|\xc0\xaf|\xed\xa0\x80|\xf4\x90\x80\x80|\xe2\x82")}) {
                        name.setValue(value);
                        printer.startDictEntry(name);
                        printer.template addArgs<"%s">(name.getArg());
                        printer.endDictEntry();
                      }
                      word.setValue(7);
                      printer.startDictEntry(word);
                      count.setValue(~U64{0});
                      printer.template addArgs<"%llu %llu">(count.getArg(), count.getArg());
                      printer.endDictEntry();
                      printer.endDict();
                      printer.startSubmodel("empty");
                      printer.endSubmodel();
                      printer.end();
                    }),
            R"({"d\n":{"q\"\\/\b\f\n\r\t\u0001)"
            "\x7f"
            R"(\u0000":{"na\"me":"q\"\\/\b\f\n\r\t\u0001)"
            "\x7f"
            R"(\u0000"},"ä😀":{"na\"me":"ä😀"},)"
            R"("�|��|���|����|�":{"na\"me":"�|��|���|����|�"},)"
            R"("7":{"count":18446744073709551615,"count":18446744073709551615}},"empty":{}})"
            "\n");
}

TEST(Printer, RefusesBrokenNesting) {
  const auto dies = [](const char* message, auto calls) { EXPECT_DEATH(printed(json, calls), message); };
  dies("insideDict", [](auto& printer) {
    tabula::StringAttrInfo key("", printer);
    key.setValue("");
    printer.start();
    printer.startDictEntry(key);
  });
  dies("insideObject", [](auto& printer) { printer.startDict("d"); });
  dies("insideObject", [](auto& printer) {
    printer.start();
    printer.startDict("d");
    printer.startSubmodel("s");
  });
  dies("closesInnermost", [](auto& printer) {
    printer.start();
    printer.startDict("d");
    printer.endSubmodel();
  });
  dies("closesInnermost", [](auto& printer) {
    printer.start();
    printer.startDict("d");
    printer.end();
  });
  dies("everyScopeClosed", [](auto& printer) { printer.start(); });
  dies("startedOnce", [](auto& printer) {
    printer.start();
    printer.end();
    printer.start();
  });
  dies("isDescriptor", [](auto& printer) {
    printer.start();
    printer.template addArgs<"%s">("n/a");
  });
  dies("hasValue", [](auto& printer) { tabula::Attr64Info("a", printer).getArg(); });
  EXPECT_DEATH(printed(3,
                       [](auto& printer) {
                         tabula::Attr64Info info("a", printer);
                         info.setValue(1);
                         info.getArg();
                       }),
               "hasValue");
}

TEST(Printer, CarriesOnWithAReaderThatIsSlow) {
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_NONBLOCK), 0);
  ::fcntl(ends[1], F_SETPIPE_SZ, 4096);
  ::fcntl(ends[0], F_SETFL, 0);
  std::string got;
  std::thread reader([&] {
    std::array<char, 1000> part{};
    for (ssize_t size = 0; (size = ::read(ends[0], part.data(), part.size())) > 0;) {
      got.append(part.data(), static_cast<std::size_t>(size));
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
  });
  std::string expected;
  {
    tabula::Printer printer(ends[1], text, true, false, true, 0);
    for (U32 i = 0; i < 20'000; ++i) {
      printer.addFrills<"%10u\n">(i);
      expected += line("%10u\n", i);
      if (i % 100 == 0) printer.ioflush();
    }
    printer.close();
  }
  ::close(ends[1]);
  reader.join();
  ::close(ends[0]);
  EXPECT_EQ(got, expected);
}

TEST(Printer, TakesNoSilentFailureOfItsLastWrite) {
  const int full = ::open("/dev/full", O_WRONLY);
  EXPECT_DEATH(
      {
        tabula::Printer printer(full, text, true, false, true, 0);
        printer.addFrills<"never closed\n">();
      },
      "No space left on device");
  ::close(full);
}

}  // namespace

}  // namespace loamtest
