// SPDX-License-Identifier: MIT
#include "bench/parts/Benchmarks.h"
#include "bench/parts/CannedProvider.h"
#include "services/UsageData.h"

#include <expat.h>

#include <memory>

namespace {

void parseReport(benchmark::State& state)
{
    CannedProvider provider;
    auto const parse = [&provider] { return UsageData(provider, ProviderAddresses("host")).updateUsage("demohome"); };
    auto const checked = parse();
    require(checked && checked->size() == 6, "a report has six figures");
    while (state.KeepRunning()) {
        auto report = parse();
        benchmark::DoNotOptimize(report);
    }
}

// Calls expat as the program does, including the query for the source of each piece of text, with handlers that do
// nothing.
bool parseBare(std::string const& document)
{
    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> const parser(
        XML_ParserCreate("UTF-8"), &XML_ParserFree);
    XML_UseParserAsHandlerArg(parser.get());
    XML_SetElementHandler(parser.get(), [](void*, char const*, char const**) { }, [](void*, char const*) { });
    XML_SetCharacterDataHandler(
        parser.get(), [](void* itself, char const*, int) { XML_DefaultCurrent(static_cast<XML_Parser>(itself)); });
    XML_SetDefaultHandler(parser.get(), [](void*, char const*, int) { });
    return XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), XML_TRUE) == XML_STATUS_OK;
}

void parseReportBare(benchmark::State& state)
{
    auto const& document = CannedProvider::report();
    require(parseBare(document), "a report is well-formed");
    while (state.KeepRunning()) {
        bool const wellFormed = parseBare(document);
        benchmark::DoNotOptimize(wellFormed);
    }
}

}

void addReportBenchmarks()
{
    add("report parse/ours", &parseReport);
    add("report parse/bare", &parseReportBare);
}
