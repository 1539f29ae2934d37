// SPDX-License-Identifier: MIT
// Runs each input of the given folders once, for builds without a fuzzer: replay FOLDER...
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <span>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

int main(int argumentCount, char** arguments)
{
    std::size_t inputs = 0;
    for (char const* const folder : std::span(arguments, static_cast<std::size_t>(argumentCount)).subspan(1)) {
        for (auto const& entry : std::filesystem::directory_iterator(folder)) {
            std::ifstream file(entry.path(), std::ios::binary);
            std::string const bytes { std::istreambuf_iterator<char>(file), {} };
            LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size());
            ++inputs;
        }
    }
    std::cout << inputs << " inputs\n";
    return inputs > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
