#pragma once

#include <appdata/data/entries/Entry.h>

namespace Tessellum::AppData::Data::Entries {

class ClassificationNameEntryManipulationProvider;

/*! Stands for a pair of classification and name: its children refer to the elements of all entries of the
 * pair. */
class TESSELLUM_EXPORT ClassificationNameEntry : public Entry
{
    Q_OBJECT

public:
    /*! \a pairPath is the path of the pair's link below the root. */
    ClassificationNameEntry(const EntryData &data, const QString &pairPath);
    ~ClassificationNameEntry() override;

    std::shared_ptr<const Interfaces::DataEntryManipulationInterface>
    getManipulationInterface() const override;
    std::shared_ptr<Interfaces::DataEntryManipulationInterface> getManipulationInterface() override;

    QString getLinkPath() const { return linkPath; }

private:
    const QString linkPath;
    std::shared_ptr<ClassificationNameEntryManipulationProvider> pairManipulationProvider;
};

} // namespace Tessellum::AppData::Data::Entries
