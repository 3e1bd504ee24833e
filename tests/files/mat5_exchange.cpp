// mat5_exchange <from> <to>: loads all variables of a MAT-file of level 5 and saves them again. An error ends
// the program.
#include <cstdio>

#include "files/mat5.h"
#include "quorvex.h"

int main(int argc, char **argv) {
    std::FILE *from = argc == 3 ? std::fopen(argv[1], "rb") : nullptr;
    std::FILE *to = from ? std::fopen(argv[2], "wb") : nullptr;
    if (!to) return 2;
    int variables = 0;
    kn::Mat5Entry entry;
    kn::Mat5Reader reader(from, argv[1]);
    kn::Mat5Writer writer(to, argv[2]);
    bool done = writer.header();
    while (reader.next(entry)) ++variables;
    reader.rewind();
    for (; done && variables > 0; --variables) {
        Mm x;
        done = reader.read(x) && writer.write(x, reader.name());
    }
    std::fclose(from);
    return std::fclose(to) == 0 && done ? 0 : 1;
}
