// Throughput of the text engine on catalogue text: CR between records, TAB
// between fields, entities and markers inside values. Sizes are UTF-16 bytes;
// every function should run in time linear in them.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "text/item_cursor.h"
#include "text/search_replace.h"
#include "text/text_handlers.h"
#include "text/word_styling.h"

namespace {

using talp::kCR;
using talp::kTab;

constexpr const char16_t* kHeader = u"id\tname\tprice\tcurrency\tdescription\tcategory\tstock\r";
constexpr const char16_t* kNames[] = {u"Chair Ölund", u"Table Fjällmark", u"Lamp Æble™", u"Shelf Brü", u"Sofa Café"};
constexpr const char16_t* kWords[] = {u"Solid oak", u"&amp;", u"linen", u"<br>", u"stackable", u"&lt;new&gt;",
                                      u"hand-made", u"€", u"Ø 45 cm", u"&quot;classic&quot;", u"<tb>", u"matt"};

// The same text on every run: a small linear congruential generator picks the words.
const WideString& Catalogue(std::size_t bytes) {
  static std::map<std::size_t, WideString> cache;
  WideString& text = cache[bytes];
  if (!text.IsEmpty()) return text;
  std::u16string units(kHeader);
  std::uint32_t seed = 12345;
  const auto next = [&seed](std::uint32_t range) {
    seed = seed * 1664525u + 1013904223u;
    return (seed >> 8) % range;
  };
  for (std::uint32_t id = 10000; units.size() * 2 < bytes; ++id) {
    for (char c : std::to_string(id)) units.push_back(static_cast<char16_t>(c));
    units.append(u"\t").append(kNames[next(5)]).append(u"\t");
    for (char c : std::to_string(next(100000) / 100.0).substr(0, 6)) units.push_back(static_cast<char16_t>(c));
    units.append(u"\tEUR\t");
    for (std::uint32_t w = 6 + next(10); w > 0; --w) units.append(kWords[next(12)]).push_back(u' ');
    units.append(u"\tfurniture\t").append(next(2) ? u"12" : u"0").push_back(kCR);
  }
  units.resize(bytes / 2);
  text = WideString(std::move(units));
  return text;
}

void Sizes(benchmark::internal::Benchmark* bench) {
  bench->RangeMultiplier(4)->Range(1 << 20, 64 << 20)->Unit(benchmark::kMillisecond);
}

void Processed(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}

// Every field of every record, as a record loop reads them.
void BM_WalkRecordFields(benchmark::State& state) {
  const WideString& text = Catalogue(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    std::size_t seen = static_cast<std::size_t>(talp::CountUnicodeLines(text));
    talp::ItemCursor records(text.Units(), kCR);
    std::u16string_view record;
    std::u16string_view field;
    while (records.Next(record)) {
      talp::ItemCursor cursor(record, kTab);
      while (cursor.Next(field)) seen += field.size();
    }
    benchmark::DoNotOptimize(seen);
  }
  Processed(state);
}
BENCHMARK(BM_WalkRecordFields)->Apply(Sizes);

void BM_CreateLineArray(benchmark::State& state) {
  const WideString& text = Catalogue(static_cast<std::size_t>(state.range(0)));
  std::vector<WideString> lines;
  for (auto _ : state) {
    talp::CreateLineArray(text, lines);
    benchmark::DoNotOptimize(lines.data());
  }
  Processed(state);
}
BENCHMARK(BM_CreateLineArray)->Apply(Sizes);

// A header of many CR-ended names, searched for its last one.
void BM_GetIndexOfHeaderField(benchmark::State& state) {
  std::u16string header;
  int count = 0;
  while (header.size() * 2 < static_cast<std::size_t>(state.range(0))) {
    header.append(u"column_");
    for (char c : std::to_string(count++)) header.push_back(static_cast<char16_t>(c));
    header.push_back(kCR);
  }
  const WideString text(std::move(header));
  const WideString last = talp::GetNumberAsWideString(count - 1);
  WideString name("column_");
  name.Append(last);
  for (auto _ : state) benchmark::DoNotOptimize(talp::GetIndexOfHeaderField(text, name));
  if (talp::GetIndexOfHeaderField(text, name) != count) state.SkipWithError("last name not found");
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.Units().size() * 2));
}
BENCHMARK(BM_GetIndexOfHeaderField)->Apply(Sizes);

void BM_CountItemUnicode(benchmark::State& state) {
  const WideString& text = Catalogue(static_cast<std::size_t>(state.range(0)));
  const WideString separator("<br>");
  for (auto _ : state) benchmark::DoNotOptimize(talp::CountItemUnicode(text, separator));
  Processed(state);
}
BENCHMARK(BM_CountItemUnicode)->Apply(Sizes);

void BM_SearchReplaceUnicode(benchmark::State& state) {
  const WideString& text = Catalogue(static_cast<std::size_t>(state.range(0)));
  const WideString find("&amp;");
  const WideString replacement("&");
  for (auto _ : state) {
    state.PauseTiming();
    WideString copy = text;
    state.ResumeTiming();
    talp::SearchReplaceUnicode(copy, find, replacement);
    benchmark::DoNotOptimize(copy.Units().data());
  }
  Processed(state);
}
BENCHMARK(BM_SearchReplaceUnicode)->Apply(Sizes);

// Five pairs, as a user's cleaning table holds them.
void BM_UnicodeCleaning(benchmark::State& state) {
  const WideString& text = Catalogue(static_cast<std::size_t>(state.range(0)));
  const WideString table = WideString::FromUTF16(u"&amp;\t&\r&lt;\t<\r&gt;\t>\r<br>\t\n\r€\tEUR");
  for (auto _ : state) {
    state.PauseTiming();
    WideString copy = text;
    state.ResumeTiming();
    talp::UnicodeCleaning(copy, table);
    benchmark::DoNotOptimize(copy.Units().data());
  }
  Processed(state);
}
BENCHMARK(BM_UnicodeCleaning)->Apply(Sizes);

// One "Calc" process, price times stock, restyling 100,000 records as the
// loops do: most products of a two-decimal price are no short decimal as a
// double, so this is where "Calc" results are written.
void BM_CalcStyling(benchmark::State& state) {
  const WideString styling(
      "<?xml version=\"1.0\"?><Styling><Process><OutputField>value</OutputField><ProcessType>Calc</ProcessType>"
      "<ProcessInfo>[price]*[stock]</ProcessInfo></Process></Styling>");
  talp::WordStyling styler(styling, u'.');
  const WideString header("sku\rprice\rstock");
  std::vector<std::u16string> records;
  std::uint32_t seed = 12345;
  for (std::uint32_t sku = 100000; records.size() < 100000; ++sku) {
    seed = seed * 1664525u + 1013904223u;
    const std::string record = std::to_string(sku) + "\t" + std::to_string((seed >> 8) % 100000 / 100) + "." +
                               std::to_string(10 + (seed >> 4) % 90) + "\t" + std::to_string(seed % 1000) + "\t";
    records.emplace_back(record.begin(), record.end());
  }
  std::u16string record;
  for (auto _ : state) {
    for (const std::u16string& stored : records) {
      record = stored;
      benchmark::DoNotOptimize(styler.RestyleInLoop(header, record).data());
    }
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * records.size()));
}
BENCHMARK(BM_CalcStyling)->Unit(benchmark::kMillisecond);

}  // namespace
