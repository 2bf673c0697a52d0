#include "VUKSimRpm_Document.h"

#include "VUKSimExcValidationFailure.h"
#include "VUKSimRpm_DocumentImpl.h"

#include <utility>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Document";

namespace at {
constexpr int kConstructor = 12;
constexpr int kAddFile = 24;
constexpr int kCreateGenerated = 33;
constexpr int kCreateTemporary = 41;
constexpr int kFlush = 49;
constexpr int kClose = 58;
constexpr int kCloseFile = 67;
} // namespace at
} // namespace

VUKSimRpm_Document::VUKSimRpm_Document(const char* signature)
    : mImpl(new VUKSimRpm_DocumentImpl(signature))
{
    Checked(at::kConstructor);
}

VUKSimRpm_Document::VUKSimRpm_Document(VUKSimRpm_Document&& that) noexcept
    : mImpl(std::exchange(that.mImpl, nullptr))
{}

VUKSimRpm_Document& VUKSimRpm_Document::operator=(VUKSimRpm_Document&& that) noexcept
{
    if (this != &that) {
        delete mImpl;
        mImpl = std::exchange(that.mImpl, nullptr);
    }
    return *this;
}

VUKSimRpm_Document::~VUKSimRpm_Document()
{
    delete mImpl;
}

VUKSimRpm_File VUKSimRpm_Document::AddFile(const VUKString& name, AccessMode mode)
{
    return VUKSimRpm_File(Checked(at::kAddFile).AddFile(name, mode));
}

VUKSimRpm_File VUKSimRpm_Document::CreateTemporary(const VUKString& name, bool flag)
{
    return VUKSimRpm_File(Checked(at::kCreateTemporary).CreateTemporary(name, flag));
}

VUKSimRpm_File VUKSimRpm_Document::CreateGenerated(const VUKString& name, const VUKString& second,
                                                   bool flag)
{
    return VUKSimRpm_File(Checked(at::kCreateGenerated).CreateGenerated(name, second, flag));
}

void VUKSimRpm_Document::Flush()
{
    Checked(at::kFlush).Flush();
}

void VUKSimRpm_Document::Close()
{
    Checked(at::kClose).Close();
}

void VUKSimRpm_Document::Close(const VUKSimRpm_File& file)
{
    Checked(at::kCloseFile).Close(file.Impl());
}

int VUKSimRpm_Document::GetFileType(const VUKString& name)
{
    return VUKSimRpm_DocumentImpl::GetFileType(name);
}

bool VUKSimRpm_Document::UpgradeRequired(const VUKString& name)
{
    return VUKSimRpm_DocumentImpl::UpgradeRequired(name);
}

bool VUKSimRpm_Document::DowngradeRequired(const VUKString& name)
{
    return VUKSimRpm_DocumentImpl::DowngradeRequired(name);
}

bool VUKSimRpm_Document::BinaryUpgradeRequired(const VUKString& name)
{
    return VUKSimRpm_DocumentImpl::BinaryUpgradeRequired(name);
}

VUKSimRpm_DocumentImpl& VUKSimRpm_Document::Checked(int line) const
{
    if (mImpl == nullptr) {
        VUKSimExcValidationFailure().Throw(kSource, line);
    }
    return *mImpl;
}
