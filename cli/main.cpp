// linewidth: the measuring chain without a window.
#include <exception>
#include <iostream>

#include "cli/Commands.h"

int main(int argc, char** argv) {
    try {
        const width::ParsedArguments parsed = width::ParseArguments(argc, argv, std::cout, std::cerr);
        if (!parsed.arguments) {
            return parsed.nStatus;
        }
        return width::RunCommand({std::cout, std::cerr}, *parsed.arguments);
    } catch (const std::exception& error) {
        std::cerr << "linewidth: " << error.what() << '\n';
        return width::kBadInput;
    }
}
