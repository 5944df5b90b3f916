// The usual surroundings of a test through the exports: a private data folder, the trace, the library just loaded.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/data_folder.h"
#include "support/dates.h"
#include "support/library.h"
#include "support/sql.h"
#include "support/text.h"
#include "support/trace_log.h"

namespace kesta::test {

class ApiTest : public ::testing::Test {
protected:
    /// Gives the memory of a list of main folders back at the end of a test: a list without rows is left empty.
    void release(MainFolderList& list) const
    {
        sql.exec("DELETE FROM tLibMainFolder");
        EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&list), 0);
        EXPECT_EQ(list.Items, nullptr);
    }

    DataFolder data;
    TraceLog trace{data.runtimeFolder()};
    Library lib{data};
    Sql sql{data.databasePath()};
};

}  // namespace kesta::test
