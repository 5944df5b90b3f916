// The families of records: what fills a data set, and the operations measured on it.
#pragma once

#include <memory>

#include "operations.h"

namespace kesta::bench {

class Bare;

void FillMedia(const DataSet& dataSet, Bare& db);
std::unique_ptr<BenchmarkCase> MakeMediaCase(const DataSet& dataSet, const OperationTraits& traits, Side side);

/// On a data set of any family.
std::unique_ptr<BenchmarkCase> MakePhoneCase(const DataSet& dataSet, const OperationTraits& traits, Side side);

void FillPlaylists(const DataSet& dataSet, Bare& db);
std::unique_ptr<BenchmarkCase> MakePlaylistCase(const DataSet& dataSet, const OperationTraits& traits, Side side);

void FillBookmarks(const DataSet& dataSet, Bare& db);
std::unique_ptr<BenchmarkCase> MakeBookmarkCase(const DataSet& dataSet, const OperationTraits& traits, Side side);

/// Contacts, and a log of their syncs.
void FillPim(const DataSet& dataSet, Bare& db);
void FillPimLog(const DataSet& dataSet, Bare& db);
std::unique_ptr<BenchmarkCase> MakePimCase(const DataSet& dataSet, const OperationTraits& traits, Side side);
std::unique_ptr<BenchmarkCase> MakePimLogCase(const DataSet& dataSet, const OperationTraits& traits, Side side);

}  // namespace kesta::bench
