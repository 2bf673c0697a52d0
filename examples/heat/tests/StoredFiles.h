#pragma once

#include "FrameWriter.h"
#include "HistoryEnd.h"
#include "StoredRun.h"
#include "TemporaryFolder.h"

#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_Document.h"

#include <string>
#include <vector>

namespace heat {

/// A document over a file that stands for the model, 8 bytes long, and a file of results, open.
struct StoredFiles
{
    /// `mode` holds for the results; what is written anew gets a model, too.
    StoredFiles(const TemporaryFolder& folder, VUKSimRpm_Document::AccessMode mode)
        : document(kSignature),
          model(document.AddFile(VUKString(folder.Path("model.sim").c_str()),
                                 mode == VUKSimRpm_Document::Write ? mode
                                                                   : VUKSimRpm_Document::Read)),
          results(document.AddFile(VUKString(folder.Path("results.sim").c_str()), mode)),
          mesh(model.Start())
    {
        if (mode == VUKSimRpm_Document::Write) {
            VUKSimRpm_BStreamAppendToPool stream(model.Pool(), 64);
            stream.Write("the mesh", 8);
        }
    }

    VUKSimRpm_Document document;
    VUKSimRpm_File model;
    VUKSimRpm_File results;
    VUKSimRpm_Locator mesh;
};

} // namespace heat
