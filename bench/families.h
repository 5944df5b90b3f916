// The families of the library's books: what fills a scene, and the operations measured on it.
#pragma once

#include <memory>

#include "operations.h"

namespace kesta::bench {

class Bare;

void FillMedia(const Scene& scene, Bare& db);
std::unique_ptr<Work> MakeMediaWork(const Scene& scene, const OperationTraits& traits, Side side);

/// On a scene of any family.
std::unique_ptr<Work> MakePhoneWork(const Scene& scene, const OperationTraits& traits, Side side);

void FillPlaylists(const Scene& scene, Bare& db);
std::unique_ptr<Work> MakePlaylistWork(const Scene& scene, const OperationTraits& traits, Side side);

void FillBookmarks(const Scene& scene, Bare& db);
std::unique_ptr<Work> MakeBookmarkWork(const Scene& scene, const OperationTraits& traits, Side side);

/// Contacts, and a log of their syncs.
void FillPim(const Scene& scene, Bare& db);
void FillPimLog(const Scene& scene, Bare& db);
std::unique_ptr<Work> MakePimWork(const Scene& scene, const OperationTraits& traits, Side side);
std::unique_ptr<Work> MakePimLogWork(const Scene& scene, const OperationTraits& traits, Side side);

}  // namespace kesta::bench
