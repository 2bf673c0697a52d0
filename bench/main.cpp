// usage: vuksim_bench [--quick | --smoke] [--rounds N] [--cases REGEX] [--contenders REGEX]
//                     [--folder FOLDER] [--output FOLDER]
//
// Runs every case that matches with every contender that matches, and writes results.csv and
// results.md to the output folder. Ends with 1 when a contender failed or read other bytes.
#include "Cases.h"
#include "Results.h"
#include "Rounds.h"

#include "Data.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <regex>
#include <stdexcept>

namespace {

struct Options
{
    Scale scale = FullScale();
    int rounds = 0; // as many as the scale has
    std::string cases = ".*";
    std::string contenders = ".*";
    std::string folder = "bench-files"; // under the working folder, emptied
    std::string output = ".";
};

Options Parse(const std::vector<std::string>& arguments)
{
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto value = [&]() -> const std::string& {
            if (i + 1 == arguments.size()) {
                throw std::runtime_error(arguments[i] + " takes a value");
            }
            return arguments[++i];
        };
        if (arguments[i] == "--quick") {
            options.scale = QuickScale();
        } else if (arguments[i] == "--smoke") {
            options.scale = SmokeScale();
        } else if (arguments[i] == "--rounds") {
            options.rounds = std::stoi(value());
            if (options.rounds < 1) {
                throw std::runtime_error("--rounds takes a number from 1 on");
            }
        } else if (arguments[i] == "--cases") {
            options.cases = value();
        } else if (arguments[i] == "--contenders") {
            options.contenders = value();
        } else if (arguments[i] == "--folder") {
            options.folder = value();
        } else if (arguments[i] == "--output") {
            options.output = value();
        } else {
            throw std::runtime_error("no option " + arguments[i]);
        }
    }
    if (options.rounds == 0) {
        options.rounds = options.scale.rounds;
    }
    return options;
}

// The library first, then floors, then peers; those whose name matches.
Contenders MakeContenders(const std::string& names)
{
    const std::regex wanted(names);
    Contenders contenders;
    for (const auto& make : AnnouncedMakers()) {
        auto contender = make();
        if (std::regex_match(contender->Name(), wanted)) {
            contenders.push_back(std::move(contender));
        }
    }
    std::ranges::stable_sort(contenders, {}, [](const auto& each) { return each->What(); });
    return contenders;
}

int Bench(const Options& options)
{
    std::filesystem::create_directories(options.output);
    std::filesystem::create_directories(options.folder);
    const std::string folder = std::filesystem::absolute(options.folder).string() + "/run";
    const std::string about = AboutThisMachine(options.folder) + "- work: " + options.scale.name +
                              ", " + std::to_string(options.scale.bulk / 1024 / 1024) + " MiB, " +
                              std::to_string(options.scale.count) + " random accesses, " +
                              std::to_string(options.rounds) + " rounds\n";
    std::cout << about << std::flush;

    Contenders contenders = MakeContenders(options.contenders);
    if (contenders.empty()) {
        throw std::runtime_error("no contender is called " + options.contenders);
    }
    std::vector<Participant> participants;
    for (const auto& each : contenders) {
        participants.push_back({each->Name(), each->What(), each->Version(), each->Tuning()});
    }
    const std::regex wanted(options.cases);
    Results results;
    Rounds rounds(contenders, folder, options.rounds);
    std::vector<Case> cases = Cases(options.scale);
    std::erase_if(cases, [&](const Case& one) { return !std::regex_search(one.id, wanted); });
    for (const Case& one : cases) {
        const Stopwatch watch;
        rounds.Run(one, results);
        std::cout << one.id << " (" << static_cast<int>(watch.Seconds() + 0.5) << " s)"
                  << std::endl;
    }
    for (const Case& one : MemoryCases(options.scale)) {
        if (std::regex_search(one.id, wanted)) {
            rounds.RunForMemory(one, results);
            std::cout << one.id << std::endl;
        }
    }
    WriteCsv(results, options.output + "/results.csv");
    const std::string tables = options.output + "/results.md";
    WriteMarkdown(results, cases, participants, about, tables);
    std::cout << '\n' << std::ifstream(tables).rdbuf();
    if (rounds.Failures() > 0) {
        std::cout << rounds.Failures() << " contenders failed, see above\n";
    }
    return rounds.Failures() > 0 ? 1 : 0;
}

// --memory NAME WORK SIZE COUNT BULK FOLDER
int MeasureMemoryOf(const std::vector<std::string>& arguments)
{
    const Contenders one = MakeContenders(arguments.at(1));
    MeasureMemory(*one.at(0), {.work = static_cast<Workload>(std::stoi(arguments.at(2))),
                               .size = std::stoll(arguments.at(3)),
                               .count = std::stoll(arguments.at(4)),
                               .bulk = std::stoll(arguments.at(5)),
                               .folder = arguments.at(6)});
    return 0;
}
} // namespace

int main(int count, char** values)
{
    const std::vector<std::string> arguments(values + 1, values + count);
    try {
        if (!arguments.empty() && arguments[0] == "--memory") {
            return MeasureMemoryOf(arguments);
        }
        return Bench(Parse(arguments));
    } catch (const std::exception& failure) {
        std::cerr << "vuksim_bench: " << failure.what() << '\n';
        return 2;
    }
}
