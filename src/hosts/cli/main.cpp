// bvxcad: the command-line host of the drawing control.
#include "CliWindow.h"
#include "ScriptRunner.h"
#include "TestCard.h"
#include "platform/ByteStream.h"
#include "platform/raster/RasterDeviceContext.h"
#include "raster/Dib.h"
#include "raster/Image2.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>

namespace {

int Usage()
{
    std::fprintf(stderr, "usage: bvxcad testcard OUT.bmp   draw the device test card into a 24-bit BMP\n"
                         "       bvxcad run SCRIPT         run a script of member calls (- reads standard input)\n");
    return 2;
}

int RunTestCard(const std::string& path)
{
    auto bitmap = bvx::CreateBitmap(bvx::kTestCardWidth, bvx::kTestCardHeight);
    bvx::RasterDeviceContext dc(bitmap);
    bvx::DrawTestCard(dc);
    if (!bvx::script::WriteBitmapFile(*bitmap, path)) {
        std::fprintf(stderr, "bvxcad: cannot write %s\n", path.c_str());
        return 1;
    }
    std::printf("bvxcad: test card written to %s (%dx%d)\n", path.c_str(), bitmap->Width(), bitmap->Height());
    return 0;
}

int RunScript(const std::string& path)
{
    std::ifstream file;
    if (path != "-") {
        file.open(path, std::ios::binary);
        if (!file) {
            std::fprintf(stderr, "bvxcad: cannot read %s\n", path.c_str());
            return 1;
        }
    }
    bvx::script::EventLog events;
    bvx::CadControl control(nullptr, &events);
    bvx::script::ScriptRunner runner(control, events, std::cout);
    std::optional<bvx::script::ScriptError> error = runner.Run(path == "-" ? std::cin : file);
    std::cout.flush();
    if (!error) return 0;
    std::fprintf(stderr, "%s\n", error->ToString().c_str());
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    bvx::SetErrorReporter([](const std::string& message) { std::fprintf(stderr, "bvxcad: %s\n", message.c_str()); });
    if (argc == 3 && std::strcmp(argv[1], "testcard") == 0) return RunTestCard(argv[2]);
    if (argc == 3 && std::strcmp(argv[1], "run") == 0) return RunScript(argv[2]);
    return Usage();
}
