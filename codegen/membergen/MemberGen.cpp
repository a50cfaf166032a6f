// bvx_membergen: runs on the build machine and writes what is made from the
// member table: the interface definition, its C++ header and the reference
// page.
#include "HeaderWriter.h"
#include "IdlWriter.h"
#include "ReferencePageWriter.h"

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

namespace {

bool WriteFile(const std::string& path, void (*write)(std::ostream&))
{
    std::ostringstream text;
    write(text);
    std::ofstream file(path, std::ios::binary);
    file << text.str();
    file.close();
    if (!file) std::fprintf(stderr, "bvx_membergen: cannot write %s\n", path.c_str());
    return bool(file);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: bvx_membergen OUTDIR   writes bvxcad.idl, bvxcad.h, bvxcad_vtable.h\n"
                             "                               and members.md into OUTDIR\n");
        return 2;
    }
    const std::string dir = argv[1];
    bool ok = WriteFile(dir + "/bvxcad.idl", bvx::membergen::WriteIdl);
    ok = WriteFile(dir + "/bvxcad.h", bvx::membergen::WriteInterfaceHeader) && ok;
    ok = WriteFile(dir + "/bvxcad_vtable.h", bvx::membergen::WriteVtableHeader) && ok;
    ok = WriteFile(dir + "/members.md", bvx::membergen::WriteReferencePage) && ok;
    return ok ? 0 : 1;
}
