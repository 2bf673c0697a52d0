// The library's side of each workload, through the public headers alone.
#pragma once

#include "Data.h"
#include "StoreContender.h"

#include "VUKSimPoolManager.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Locator.h"
#include "VUKSimRpm_MemoryPool.h"
#include "VUKSimRpm_Pool.h"

#include <memory>
#include <optional>
#include <vector>

/// How a library contender differs from the plain one.
enum class Variant
{
    Plain,
    OverBase,       // reads its stream through a reference to the abstract base
    WithoutMappings // the platform's files have to do without mmap
};

class Library final : public StoreContender
{
public:
    explicit Library(Variant variant);
    ~Library() override;

    [[nodiscard]] std::string Name() const override;
    [[nodiscard]] Kind What() const override { return Kind::Library; }
    [[nodiscard]] std::string Version() const override { return VUKSIM_BENCH_VERSION; }
    [[nodiscard]] std::string Tuning() const override;
    [[nodiscard]] bool Offers(const Job& job) const override;
    void Make(const Job& job) override;
    void Open(const Job& job) override;
    Sample Run(const Job& job) override;
    void Close() override;

private:
    using Document = VUKSimRpm_Document;

    VUKSimRpm_File Add(const std::string& path, Document::AccessMode mode);
    void Remove(const std::string& path);

    // Library.cpp: records and pieces
    void MakeBulk(const Job& job) override;
    Sample Append(const Job& job) override;
    Sample Overwrite(const Job& job) override;
    Sample Decode(const Job& job) override;
    Sample ReadRandom(const Job& job) override;
    Sample WriteRandom(const Job& job) override;

    // LibraryPools.cpp
    Sample CreatePools(const Job& job) override;
    Sample OpenPools(const Job& job) override;
    Sample Import(const Job& job) override;

    // LibraryReferences.cpp: locators and texts
    void MakeNodes(const Job& job) override;
    Sample Chase(const Job& job) override;
    void MakeTargets(const Job& job) override;
    void OpenTargets(const Job& job);
    Sample StoreLocators(const Job& job) override;
    Sample LoadLocators(const Job& job) override;
    Sample WriteStrings(const Job& job) override;
    Sample ReadStrings(const Job& job) override;

    Variant mVariant;
    std::optional<Document> mDocument;
    std::vector<VUKSimRpm_File> mFiles;
    std::unique_ptr<VUKSimRpm_MemoryPool> mImage;
    std::vector<VUKSimRpm_Locator> mTargets;
    std::vector<char> mRecords;    // stored locators
    std::vector<VUKString> mTexts; // to write
};
