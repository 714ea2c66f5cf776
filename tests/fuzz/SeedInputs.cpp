#include <vector>

/// A fuzzer that is started without a corpus begins with its seeds; nothing is written beside them.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static char seeds[] = "-seed_inputs=" SEED_INPUTS;
    static std::vector<char *> arguments(*argv, *argv + *argc);
    for (const char *argument : arguments)
        if (argument != arguments.front() && argument[0] != '-')
            return 0;
    arguments.push_back(seeds);
    *argc = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    *argv = arguments.data();
    return 0;
}
