// The people of the sample data: all invented. Their numbers and addresses lie in ranges that are kept free
// for examples.
#pragma once

struct SamplePerson {
    const char16_t* firstName;
    const char16_t* lastName;
    const char16_t* company;
    const char16_t* jobTitle;
    const char16_t* mail;
    const char16_t* phone;
    const char16_t* street;
    const char16_t* town;
    const char16_t* country;
    int birthMonth; // 0: not known
    int birthDay;
};

inline constexpr SamplePerson kPeople[] = {
    {u"Ada", u"Winterbourne", u"Harbour & Pine", u"Architect", u"ada@example.com", u"(206) 555-0114",
     u"14 Juniper Lane", u"Port Alder", u"USA", 3, 9},
    {u"Anaïs", u"Delacourt", u"Atelier Delacourt", u"Bookbinder", u"anais@example.org", u"+33 1 99 00 12 34",
     u"8 rue des Tilleuls", u"Montclair-sur-Loire", u"France", 7, 22},
    {u"Björn", u"Ängström", u"Nordlicht Optik", u"Lens maker", u"bjorn@example.net", u"+46 31 3900 6 12",
     u"Strandvägen 3", u"Lilla Viken", u"Sverige", 11, 2},
    {u"Zoë", u"van der Meulen", u"", u"", u"zoe@example.org", u"+31 85 999 0123", u"Molenpad 27",
     u"Oosterhaven", u"Nederland", 5, 17},
    {u"𠮷野", u"さくら", u"青空製作所", u"デザイナー", u"sakura@example.com", u"+81 3 0000 1122",
     u"桜台二丁目4-7", u"青葉町", u"日本", 4, 4},
    {u"Łukasz", u"Żółtowski", u"Kolej Górska", u"Railway engineer", u"lukasz@example.net",
     u"+48 22 000 11 22", u"ul. Źródlana 12", u"Górki Małe", u"Polska", 9, 30},
    {u"Ελένη", u"Παππά", u"Φάρος Ναυτιλιακή", u"Harbour pilot", u"eleni@example.com", u"+30 21 0000 1234",
     u"Οδός Ελιάς 9", u"Νέα Ακτή", u"Ελλάδα", 8, 15},
    {u"Иван", u"Лесной", u"Северный сад", u"Gardener", u"ivan@example.org", u"+7 495 000 12 34",
     u"Садовая ул., 5", u"Тихий Берег", u"Россия", 1, 7},
    {u"Siobhán", u"Ní Fhaoláin", u"The Quiet Press", u"Editor", u"siobhan@example.com", u"+353 1 555 0142",
     u"3 Rowan Terrace", u"Dunmara", u"Éire", 2, 1},
    {u"Tomás", u"Núñez Peña", u"Viñedos del Sol", u"Vintner", u"tomas@example.net", u"+34 900 000 321",
     u"Calle de la Vid 40", u"Valdehoja", u"España", 10, 12},
    {u"Jürgen", u"Großmann", u"Feinmechanik Großmann", u"Watchmaker", u"juergen@example.org",
     u"+49 30 23125 011", u"Uhrmachergasse 7", u"Altenbrück", u"Deutschland", 12, 6},
    {u"Priya", u"Raghunathan", u"Monsoon Analytics", u"Statistician", u"priya@example.com",
     u"+91 22 0000 4455", u"21 Banyan Road", u"Neelapuram", u"India", 6, 19},
    {u"Çağla", u"Şimşek", u"Boğaz Fırını", u"Baker", u"cagla@example.org", u"+90 212 000 01 02",
     u"İncir Sokak 11", u"Yeniköprü", u"Türkiye", 4, 23},
    {u"יעל", u"ברקת", u"", u"Botanist", u"yael@example.net", u"+972 3 000 1234", u"רחוב הזית 6", u"גן שקד",
     u"ישראל", 0, 0},
    {u"Oluwaseun", u"Adébáyọ̀", u"Palmgrove Radio", u"Presenter", u"seun@example.com", u"+234 1 000 2211",
     u"5 Palmgrove Close", u"Ìlú Tuntun", u"Nigeria", 9, 14},
    {u"Māia", u"Te Ahurangi", u"Long Cloud Tramping", u"Guide", u"maia@example.org", u"+64 4 555 0190",
     u"2 Kōwhai Street", u"Whangaroto", u"Aotearoa", 2, 6},
    {u"Nguyễn", u"Thị Hạnh", u"Hoa Sen Crafts", u"Lacquer painter", u"hanh@example.net", u"+84 24 0000 778",
     u"18 Phố Hoa Sen", u"Thanh Bình", u"Việt Nam", 1, 28},
    {u"김", u"하늘", u"바람연구소", u"Kite maker", u"haneul@example.com", u"+82 2 0000 5566",
     u"은행나무길 33", u"푸른마을", u"대한민국", 10, 9},
    {u"Matteo", u"Bellacqua", u"Fontane Bellacqua", u"Plumber", u"matteo@example.org", u"+39 06 0000 0118",
     u"Via dei Limoni 2", u"Torrechiara", u"Italia", 6, 2},
    {u"Kári", u"Þórsson", u"Jökull Survey", u"Glaciologist", u"kari@example.net", u"+354 555 0117",
     u"Mávahlíð 21", u"Sandvík", u"Ísland", 12, 23},
    {u"Beatriz", u"Conceição", u"Farol Azul", u"Ceramicist", u"beatriz@example.com", u"+351 21 000 0199",
     u"Rua do Farol 1", u"Praia Serena", u"Portugal", 5, 1},
    {u"Gwen", u"Pritchard-Vaughan", u"Hill Farm Dairy", u"Cheesemaker", u"gwen@example.org", u"01632 960117",
     u"Hill Farm", u"Llanfelyn", u"United Kingdom", 3, 1},
    {u"Dr. Ondřej", u"Hlubočík", u"Ordinace Hlubočík", u"Dentist", u"ondrej@example.net", u"+420 900 000 123",
     u"Lipová 16", u"Bílá Lhota", u"Česko", 0, 0},
    {u"Ruth", u"Okonkwo-Lindqvist", u"Meridian Mapping", u"Cartographer", u"ruth@example.com",
     u"(415) 555-0176", u"77 Compass Court", u"Bayview Heights", u"USA", 8, 8},
    {u"Sándor", u"Erdőhegyi", u"Zöld Szalon", u"Violin maker", u"sandor@example.org", u"+36 1 999 0011",
     u"Hársfa utca 4", u"Kékvölgy", u"Magyarország", 3, 15},
    {u"王", u"小雨", u"雲帆書店", u"Bookseller", u"xiaoyu@example.net", u"+86 10 0000 9988", u"梧桐路 88 号",
     u"清河", u"中国", 2, 18},
    {u"Femke", u"Dijkstra-Bos", u"Windmolen IV", u"Miller", u"femke@example.com", u"+31 85 999 0177",
     u"Dijkweg 1", u"Noorderend", u"Nederland", 7, 5},
    {u"Mikko", u"Järvinen-Lehtola", u"Hiljainen Ranta", u"Boat builder", u"mikko@example.org",
     u"+358 9 425 0011", u"Rantatie 15", u"Koivusaari", u"Suomi", 12, 6},
    {u"Amélie", u"Bouchard-Roy", u"Érablière du Nord", u"Sugar maker", u"amelie@example.net",
     u"(418) 555-0133", u"120 rang de l'Érable", u"Saint-Aubert-des-Monts", u"Canada", 6, 24},
    {u"Hassan", u"الزيتوني", u"مكتبة النخيل", u"Librarian", u"hassan@example.com", u"+20 2 0000 3344",
     u"شارع النخيل ١٢", u"واحة الزهور", u"مصر", 0, 0},
    {u"Inês", u"Vasconcelos Duarte", u"", u"Student", u"ines@example.org", u"+351 21 000 0155",
     u"Travessa da Rosa 9", u"Vale Verde", u"Portugal", 9, 9},
    {u"Thaddeus", u"Quillfeather", u"Quillfeather & Daughters", u"Solicitor", u"thaddeus@example.com",
     u"020 7946 0112", u"1 Inkwell Yard", u"London", u"United Kingdom", 4, 1},
};
