#pragma once
// The ordered collection every list of the program is made of: 1-based positions, items held by
// shared reference (adding a record to a second collection never copies it) and an optional
// string key per item for lookups by name.
#include "model/Fehler.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace lyrabo {

template <typename T>
class Sammlung {
public:
    using Ref = std::shared_ptr<T>;

    int32_t Count() const { return static_cast<int32_t>(m_items.size()); }
    bool leer() const { return m_items.empty(); }

    void Add(Ref item) { m_items.push_back({std::move(item), {}}); }

    void Add(Ref item, const std::string& key) {
        if (m_keys.count(key)) throw IndexFehler("Dieser Schlüssel ist bereits einem Element der Auflistung zugeordnet.");
        m_keys.emplace(key, item);
        m_items.push_back({std::move(item), key});
    }

    // Inserts before the item now at position `vor` (1-based); Count()+1 appends.
    void Insert(Ref item, int32_t vor) {
        if (vor < 1 || vor > Count() + 1) throw IndexFehler();
        m_items.insert(m_items.begin() + (vor - 1), Eintrag{std::move(item), {}});
    }

    const Ref& Item(int32_t pos) const {
        if (pos < 1 || pos > Count()) throw IndexFehler();
        return m_items[static_cast<size_t>(pos - 1)].item;
    }
    const Ref& Item(const std::string& key) const {
        auto it = m_keys.find(key);
        if (it == m_keys.end()) throw IndexFehler();
        return it->second;
    }
    bool hatSchluessel(const std::string& key) const { return m_keys.count(key) != 0; }

    const Ref& Last() const { return Item(Count()); }

    void Remove(int32_t pos) {
        if (pos < 1 || pos > Count()) throw IndexFehler();
        auto it = m_items.begin() + (pos - 1);
        if (!it->key.empty()) m_keys.erase(it->key);
        m_items.erase(it);
    }

    // Empties the collection (the program removes the last item until none is left).
    void Clear() {
        m_items.clear();
        m_keys.clear();
    }

    // Bulk access for stages that rebuild a whole collection in one pass; keys are not kept.
    std::vector<Ref> alsVektor() const {
        std::vector<Ref> v;
        v.reserve(m_items.size());
        for (const auto& e : m_items) v.push_back(e.item);
        return v;
    }
    void ersetzeDurch(std::vector<Ref> v) {
        Clear();
        m_items.reserve(v.size());
        for (auto& r : v) m_items.push_back({std::move(r), {}});
    }

    // Range-for over the references in order.
    auto begin() const { return RefIter{m_items.begin()}; }
    auto end() const { return RefIter{m_items.end()}; }

private:
    struct Eintrag {
        Ref item;
        std::string key;
    };
    struct RefIter {
        typename std::vector<Eintrag>::const_iterator it;
        const Ref& operator*() const { return it->item; }
        RefIter& operator++() { ++it; return *this; }
        bool operator!=(const RefIter& o) const { return it != o.it; }
        bool operator==(const RefIter& o) const { return it == o.it; }
    };
    std::vector<Eintrag> m_items;
    std::unordered_map<std::string, Ref> m_keys;
};

template <typename T>
using SammlungRef = std::shared_ptr<Sammlung<T>>;

template <typename T>
SammlungRef<T> neueSammlung() { return std::make_shared<Sammlung<T>>(); }

} // namespace lyrabo
