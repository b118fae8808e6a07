// `work FILE...`: the whole work over messages, and not a word: what a check looks at from outside.
#include "support/WholeWork.h"

int main(int argc, char** argv)
{
    Velmara::loadTables();
    for (int i = 1; i < argc; ++i)
        if (Velmara::wholeWork(Velmara::contentOf(argv[i])).empty()) return 1;
    return 0;
}
