// Brings an ordered run of rows (a tree item's children, a list's items) to a wanted
// order of keys with few moves, so a view keeps its rows, selection and scroll
// position when one object comes, goes or moves.
#pragma once

#include <unordered_set>
#include <vector>

namespace cad::ui {

// `rows` offers count(), keyAt(i), takeAt(i) (the row leaves; it may come back
// elsewhere) and insertAt(i, key) (the row for key, from wherever it is, or new).
template <typename Key, typename Rows>
void patchSequence(const std::vector<Key>& wanted, Rows& rows) {
    const std::unordered_set<Key> wantedSet(wanted.begin(), wanted.end());
    int i = 0;
    for (const Key& key : wanted) {
        while (i < rows.count() && !wantedSet.contains(rows.keyAt(i))) rows.takeAt(i);
        if (i < rows.count() && rows.keyAt(i) == key) {
            ++i;
            continue;
        }
        rows.insertAt(i, key);
        ++i;
    }
    while (i < rows.count()) rows.takeAt(i);
}

} // namespace cad::ui
