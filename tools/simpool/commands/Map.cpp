#include "Map.h"

#include "EscapedText.h"
#include "Json.h"
#include "MapPicture.h"
#include "PictureFile.h"

namespace simpool {
namespace {

Json AsDocument(const LoadedFile& file, const std::vector<Stretch>& stretches)
{
    Json document = NewDocument("map");
    document["file"] = Escaped(file.name);
    document["size"] = file.bytes.Size();
    Json totals = Json::object();
    const auto sums = SumByKind(stretches);
    for (std::size_t i = 0; i < kStretchKinds; ++i) {
        totals[NameOf(static_cast<StretchKind>(i))] = sums[i];
    }
    document["totals"] = std::move(totals);
    Json list = Json::array();
    for (const Stretch& stretch : stretches) {
        Json entry = {
            {"kind", NameOf(stretch.kind)}, {"begin", stretch.begin}, {"end", stretch.end}};
        if (stretch.kind != StretchKind::Lost) {
            entry["pool"] = stretch.pool;
        }
        list.push_back(std::move(entry));
    }
    document["stretches"] = std::move(list);
    return document;
}
} // namespace

CommandText Map::Text() const
{
    return {"map", "Draw where in a file what lies",
            "Draws the file as a bar from its first byte to its last: headers, directories, data, "
            "holes (data that takes no room on the disk), and what belongs to no pool. With many "
            "pools the bar is drawn once more in rows. All is true to scale; what is too small to "
            "be seen stands together with its neighbours, stacked by kind. Each part tells pool, "
            "position and size when the pointer rests on it.",
            "simpool map run.sim -o run.svg\n"};
}

void Map::AddOptions(CLI::App& options)
{
    options.add_option("file", mName, "The file to draw")->required()->type_name("FILE");
    AddPictureOptions(options, mOutput, mIsForced);
}

ExitCode Map::Run(const Surroundings& surroundings)
{
    const LoadedFiles files({mName}, LoadedFiles::Walk::EachAlone);
    const std::vector<Stretch> stretches = MapFile(files[0]);
    const std::string picture = surroundings.json ? AsDocument(files[0], stretches).dump(2) + "\n"
                                                  : DrawMap(files[0], stretches);
    WritePicture(picture, files, {mOutput, mIsForced}, surroundings.out);
    return TellDamage(files, surroundings.err) ? ExitCode::Finding : ExitCode::Fine;
}
} // namespace simpool
