// The sample databases. Each call makes one group and is false when the store refused something, with the
// last error set.
#pragma once

bool MakeSystemDatabases();
bool MakeContacts();
bool MakeCalendar(); // appointments and tasks
bool MakeMail();
bool MakeNotes();
bool MakeJournals(); // expenses, vehicle log, weather diary
bool MakeCallLog();
bool MakeVocabulary();
bool MakeLibrary();  // four sort orders
bool MakeSketches(); // blobs
bool MakeOddities(); // every type of value, an empty database, records of differing properties
bool MakeRegistry(); // keys below all three main keys, with every type of value
