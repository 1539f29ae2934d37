// SPDX-License-Identifier: MIT
#include "bench/parts/Benchmarks.h"
#include "bench/parts/CannedProvider.h"
#include "services/UsageData.h"

#include <libxml/parser.h>

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

// As the program calls libxml2, with handlers that do nothing.
bool parseBare(std::string const& document)
{
    std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> const context(xmlNewParserCtxt(), &xmlFreeParserCtxt);
    xmlSAXHandler handler {};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = [](void*, xmlChar const*, xmlChar const*, xmlChar const*, int, xmlChar const**, int, int,
                                 xmlChar const**) { };
    handler.endElementNs = [](void*, xmlChar const*, xmlChar const*, xmlChar const*) { };
    handler.characters = [](void*, xmlChar const*, int) { };
    handler.ignorableWhitespace = handler.characters;
    *context->sax = handler;
    xmlCtxtReadMemory(
        context.get(), document.data(), static_cast<int>(document.size()), nullptr, "UTF-8", XML_PARSE_NONET);
    return context->wellFormed;
}

void parseReportBare(benchmark::State& state)
{
    auto const& document = CannedProvider::report();
    xmlInitParser();
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
