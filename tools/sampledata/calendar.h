// What the sample device's owner had, and has, to do.
#pragma once

struct SampleAppointment {
    const char16_t* subject; // one that ends in a blank is completed by a person's name
    const char16_t* place;
    int hour;
    int minutes;  // 0: all day
    int reminder; // minutes before; 0: none
    const char16_t* text;
};

inline constexpr SampleAppointment kAppointments[] = {
    {u"Breakfast with ", u"The Copper Kettle", 8, 60, 15, u""},
    {u"Dentist", u"Ordinace Hlubočík, Lipová 16", 9, 45, 60, u"Bring the old X-ray."},
    {u"Team meeting", u"Room 4", 10, 60, 15, u"Agenda:\r\n1. Maps\r\n2. More maps\r\n3. Biscuits"},
    {u"Choir rehearsal", u"St. Brannoc's hall", 19, 120, 30, u"Second altos sit on the left this time."},
    {u"Violin lesson with ", u"Zöld Szalon", 17, 45, 30, u""},
    {u"Telephone call: ", u"", 11, 20, 5, u""},
    {u"Lunch with ", u"Soup place behind the market", 12, 75, 15, u""},
    {u"Tram to the coast", u"Platform 2", 7, 95, 30, u"Windward side has the view."},
    {u"Flea market", u"Mühlendamm", 9, 180, 0, u"Look for: fountain pen nibs, a lamp, nothing large."},
    {u"Public holiday", u"", 0, 0, 0, u""},
    {u"Birthday: ", u"", 0, 0, 720, u"Send a card that is made of paper."},
    {u"Evening class: celestial navigation", u"Harbour school", 18, 90, 30, u"Sextant, pencil, patience."},
    {u"Vet: Comma and Semicolon", u"Tierklinik am Park", 16, 30, 45, u"Both baskets!"},
    {u"Piano tuner", u"at home", 10, 90, 60, u""},
    {u"Film: «Le Phare au bout du monde»", u"Cinéma Étoile", 20, 130, 30, u"Row 7."},
    {u"Garden: prune the apple trees", u"", 9, 240, 0, u"Not the young one on the left."},
    {u"Walk along the river with ", u"from the old bridge", 15, 120, 30, u""},
    {u"Backup night", u"", 22, 30, 5, u"All databases, then the card goes into the drawer."},
    {u"花見", u"青葉公園", 12, 180, 60, u"お弁当を忘れないこと。"},
    {u"Deadline: coastal atlas, sheet 12", u"", 17, 30, 1440, u"Soundings still missing for Lilla Viken."},
    {u"Library: return books", u"", 14, 20, 30, u""},
    {u"Market", u"Place du Marché", 8, 60, 0, u"Quinces, rye bread, the good cheese."},
};

struct SampleTask {
    const char16_t* subject;
    int priority; // 0 low, 1 normal, 2 high
    bool hasDue;
    bool done;
    const char16_t* text;
};

inline constexpr SampleTask kTasks[] = {
    {u"Repair the kitchen clock", 1, true, true, u"Großmann says it is only the mainspring."},
    {u"Send proofs to The Quiet Press", 2, true, true, u""},
    {u"Find out who borrowed the ladder", 0, false, false, u"Not Matteo. Matteo has his own."},
    {u"Learn ten Greek words a day", 1, true, false, u"See the vocabulary."},
    {u"Book ferry for the summer", 2, true, true, u"Cabin on the port side."},
    {u"Sharpen the skates", 0, true, true, u""},
    {u"Write to Amélie about syrup", 1, false, true, u"Two tins, amber."},
    {u"New tyres for the bicycle", 1, true, false, u"28 × 1⅜"},
    {u"Label the jars", 0, false, false, u"Is the dark one plum or damson?"},
    {u"Renew passport", 2, true, true, u"Two photographs, no smile."},
    {u"Paint the garden gate", 1, true, false, u"Green. Not that green."},
    {u"Compare three quotes for the roof", 2, true, true, u""},
    {u"Return the map of Sandvík to Kári", 1, true, true, u""},
    {u"Practise the second movement slowly", 1, false, false, u"Slower."},
    {u"Back up the device every Friday", 2, true, false, u"The autobackup script does it, if asked."},
    {u"Read «War and Peace»", 0, false, false, u"Page 112."},
    {u"Order lens for the lighthouse model", 1, true, true, u"Björn: 22 mm, plano-convex"},
    {u"Plan Inês's graduation present", 1, true, true, u"An atlas, of course."},
    {u"Seal the cellar window", 2, true, true, u""},
    {u"Sow sweet peas", 1, true, false, u"After the last frost."},
    {u"ワープロのリボンを買う", 1, false, true, u""},
    {u"Tax return", 2, true, false, u"Receipts are in the biscuit tin."},
    {u"Teach Semicolon to use the cat door", 0, false, false, u"Comma has learnt it by watching."},
    {u"Take the good coat to the cleaner", 1, true, true, u""},
    {u"Ask Ελένη about the tide tables", 1, true, true, u""},
    {u"Bake the walnut-free cake", 2, true, true, u"See notes for the recipe."},
    {u"Sort the photographs of 2004", 0, true, false, u""},
    {u"Replace the fuse, then the lamp, then the fuse", 1, true, true, u""},
};
