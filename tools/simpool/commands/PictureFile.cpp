#include "PictureFile.h"

#include "EscapedText.h"
#include "NewFile.h"
#include "PoolCopying.h"

namespace simpool {

void AddPictureOptions(CLI::App& options, std::string& output, bool& isForced)
{
    options.add_option("-o,--output", output, "The file to make; else standard output")
        ->type_name("FILE");
    options.add_flag("--force", isForced, "Replace the output if it exists");
}

void WritePicture(const std::string& picture, const LoadedFiles& inputs, const PictureFile& file,
                  Output& out)
{
    if (file.name.empty()) {
        out.Write(picture);
        return;
    }
    RefuseInput(inputs, file.name);
    NewFile made(file.name, file.replaces ? NewFile::Existing::Replace : NewFile::Existing::Refuse);
    made.Append(picture);
    made.Commit();
}

bool TellDamage(const LoadedFiles& files, Output& err)
{
    bool isDamaged = false;
    for (const LoadedFile& file : files) {
        if (file.walk.stop != Stop::None) {
            err.Print("simpool: {} is drawn up to byte {} only: {}\n", Quoted(file.name),
                      Grouped(file.walk.position), Describe(file.walk.stop));
            isDamaged = true;
        }
    }
    return isDamaged;
}
} // namespace simpool
