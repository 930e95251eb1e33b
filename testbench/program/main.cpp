// ombrix-testbench: a meter and a calibrator on two pseudo-terminals.

#include <cstdio>

#include "testbench/program/options.h"
#include "testbench/program/serve.h"
#include "version.h"

int main(int argc, char **argv)
{
    using namespace ombrix::bench;
    const Options options = ParseOptions({argv + 1, argv + argc});
    if (!options.trouble.empty()) {
        std::fprintf(stderr, "ombrix-testbench: %s; --help lists the options\n", options.trouble.c_str());
        return 2;
    }
    if (options.help) {
        std::fputs(UsageText().c_str(), stdout);
        return 0;
    }
    if (options.version) {
        std::puts("ombrix-testbench " OMBRIX_VERSION);
        return 0;
    }
    const std::string trouble = Serve(options);
    if (!trouble.empty())
        std::fprintf(stderr, "ombrix-testbench: %s\n", trouble.c_str());
    return trouble.empty() ? 0 : 1;
}
