// The ring of snapshots: native files in the scratch folder, and beside each the record of what they cannot carry.
#include "app/undo.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "common/file.h"
#include "common/text.h"
#include "config/paths.h"
#include "datafile/native_file.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr int ring_size = 10;

// One stored state. The file is a native data file; the record beside it holds what such a file cannot carry.
struct Snapshot {
    std::string path;
    File file;
    DataRecord record;
    size_t count = 0, points = 0;  // vectors, points of each
    NativeLayout layout;
    bool valid = false;
};

struct Ring {
    std::array<Snapshot, ring_size> slots;
    Snapshot tip;        // the state at the first step back, for the way forward
    int position = -1;   // the slot last restored, -1 while the present state is that of the user's last command
    int steps_back = 0;  // how many slots lie between `position` and the newest
};

Ring ring;

int before(int slot) { return slot <= 0 ? ring_size - 1 : slot - 1; }
int after(int slot) { return slot < 0 || slot >= ring_size - 1 ? 0 : slot + 1; }

bool store_snapshot(Snapshot& snapshot, const std::string& name) {
    snapshot.valid = false;
    if (snapshot.path.empty()) {
        if (scratch_folder().empty()) return false;
        snapshot.path = scratch_folder() + "/" + name;
    }
    snapshot.file = File(snapshot.path, "w+b");
    snapshot.record = show;
    snapshot.count = show.store.count();
    snapshot.points = show.store.points();
    if (!write_native_file(snapshot.file, show, snapshot.layout) || std::fflush(snapshot.file.stream()) != 0) {
        snapshot.file.close();
        return false;
    }
    snapshot.valid = true;
    return true;
}

// Calls use(vector, index) with every vector of the snapshot; false as soon as one cannot be read or use says no.
template <class Use>
bool each_stored_vector(Snapshot& snapshot, Use use) {
    std::vector<Complex> vector(snapshot.points);
    for (size_t i = 0; i < snapshot.count; ++i)
        if (!read_native_slice(snapshot.file, snapshot.layout, i, vector) || !use(vector, i)) return false;
    return true;
}

bool equals_present(Snapshot& snapshot) {
    if (!(snapshot.record == show) || snapshot.count != show.store.count() || snapshot.points != show.store.points()) return false;
    return each_stored_vector(snapshot, [](const std::vector<Complex>& stored, size_t i) {
        const auto present = show.store.vector(i);
        return std::memcmp(stored.data(), present.data(), present.size_bytes()) == 0;
    });
}

bool restore(Snapshot& snapshot) {
    DataSet data;
    if (!data.store.allocate(snapshot.count, snapshot.points)) return false;
    const bool whole = each_stored_vector(snapshot, [&](const std::vector<Complex>& stored, size_t i) {
        std::copy(stored.begin(), stored.end(), data.store.vector(i).begin());
        return true;
    });
    if (!whole) return false;
    static_cast<DataRecord&>(data) = snapshot.record;
    show = std::move(data);
    show.display_valid = false;
    return true;
}

}  // namespace

void SetUndoEnabled(bool on) { session.undo_enabled = on; }

bool IsUndoEnabled() { return session.undo_enabled; }

int SaveUndoSnapshot() {
    // A new command after steps back: the states in front of the present one are dropped.
    if (ring.position >= 0) {
        for (int slot = after(ring.position); ring.steps_back > 0; slot = after(slot), --ring.steps_back)
            ring.slots[static_cast<size_t>(slot)].valid = false;
        session.undo_slot = ring.position;
        ring.position = -1;
    }
    if (!show.loaded || playing_back()) return 0;
    if (show.store.count() > 1 && CurrentArrayedLevel() == 0) return 0;
    session.undo_slot = after(session.undo_slot);
    Snapshot& snapshot = ring.slots[static_cast<size_t>(session.undo_slot)];
    return store_snapshot(snapshot, format_text("Undo%d.tmp", session.undo_slot)) ? 1 : 0;
}

bool undo_step() {
    const bool first = ring.position < 0;
    int slot = first ? session.undo_slot : before(ring.position);
    int steps = first ? 0 : ring.steps_back + 1;
    for (; slot >= 0 && steps < ring_size; slot = before(slot), ++steps) {
        Snapshot& snapshot = ring.slots[static_cast<size_t>(slot)];
        if (!snapshot.valid) return false;
        if (equals_present(snapshot)) continue;
        if (first && !store_snapshot(ring.tip, "UndoTip.tmp")) return false;
        if (!restore(snapshot)) return false;
        ring.position = slot;
        ring.steps_back = steps;
        return true;
    }
    return false;
}

bool redo_step() {
    while (ring.position >= 0) {
        const bool to_tip = ring.steps_back == 0;
        Snapshot& snapshot = to_tip ? ring.tip : ring.slots[static_cast<size_t>(after(ring.position))];
        const bool same = equals_present(snapshot);
        if (!same && !restore(snapshot)) return false;
        if (to_tip) {
            ring.position = -1;
        } else {
            ring.position = after(ring.position);
            --ring.steps_back;
        }
        if (!same) return true;
    }
    return false;
}

void DeleteUndoFiles() {
    const auto remove = [](Snapshot& snapshot) {
        snapshot.file.close();
        if (!snapshot.path.empty()) std::remove(snapshot.path.c_str());
        snapshot = {};
    };
    for (Snapshot& snapshot : ring.slots) remove(snapshot);
    remove(ring.tip);
    ring = {};
    session.undo_slot = -1;
}

}  // namespace zolt
