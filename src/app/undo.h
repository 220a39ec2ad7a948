// Undo: a ring of ten snapshots, one taken before each command, and the steps back and forth among them.
#pragma once

namespace zolt {

void SetUndoEnabled(bool on);
bool IsUndoEnabled();

/// Stores the data set as it is before a command; 1 on success, 0 when nothing was stored (no data, a macro or a link
/// plays, the disk is full). What could have been redone is dropped.
int SaveUndoSnapshot();

/// Restores the newest snapshot that differs from the present state and steps back; false when there is none.
bool undo_step();
/// The way forward again, up to the state at the first step back.
bool redo_step();

/// Closes and deletes the files of the ring. Called at program exit.
void DeleteUndoFiles();

}  // namespace zolt
