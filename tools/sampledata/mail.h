// The sample device's mail.
#pragma once

enum class SampleFolder { Inbox, Sent, Drafts };

struct SampleLetter {
    SampleFolder folder;
    int person; // whom it is from or to: a place in kPeople
    const char16_t* subject;
    const char16_t* text;
};

inline constexpr SampleLetter kLetters[] = {
    {SampleFolder::Inbox, 0, u"The drawings for the boat house",
     u"Hello,\r\n\r\nthe second set of drawings is done. I moved the door to the side that the wind does not "
     u"know about, and there is now room for both canoes and the kayak that you say you will not buy.\r\n\r\n"
     u"Could you look at sheet 3 before Thursday? The carpenter starts on Monday if the weather lets "
     u"him.\r\n\r\n"
     u"Yours,\r\nAda"},
    {SampleFolder::Sent, 0, u"Re: The drawings for the boat house",
     u"Dear Ada,\r\n\r\nsheet 3 is lovely. One question: does the ramp get slippery when it rains from the "
     u"west, which is to say, when it rains?\r\n\r\nAnd about that kayak. It was a very good price."},
    {SampleFolder::Inbox, 1, u"Votre reliure est prête",
     u"Bonjour,\r\n\r\nvotre carnet de bord est prêt : dos en toile bleue, gardes marbrées, comme convenu. "
     u"L'atelier est ouvert jusqu'à dix-neuf heures, sauf le mercredi.\r\n\r\nBien à vous,\r\nAnaïs "
     u"Delacourt"},
    {SampleFolder::Inbox, 2, u"Lens, 22 mm",
     u"Hej!\r\n\r\nThe lens was ground yesterday and survived the cat. It goes into the post tomorrow, in a "
     u"box "
     u"that is mostly straw. Do not clean it with a sleeve, however clean the sleeve.\r\n\r\nBjörn"},
    {SampleFolder::Inbox, 4, u"お花見のご案内",
     u"皆様\r\n\r\n今年も青葉公園でお花見をします。日曜日の正午、大きな桜の木の下で待ち合わせましょう。"
     u"お弁当はこちらで用意しますので、楽しい話だけ持ってきてください。\r\n\r\n𠮷野さくら"},
    {SampleFolder::Inbox, 6, u"Παλίρροιες",
     u"Καλημέρα!\r\n\r\nΣου στέλνω τον πίνακα. Το νερό στον κόλπο ανεβαίνει μόνο τριάντα εκατοστά, οπότε μην "
     u"ανησυχείς για το καγιάκ. Πρόσεχε όμως τον βοριά μετά το μεσημέρι.\r\n\r\nΕλένη"},
    {SampleFolder::Inbox, 8, u"Proofs, and a missing comma",
     u"Chapter four is back from the printer. On page 61 a comma has gone missing and taken the sense of the "
     u"sentence with it. If you find it, please send it home.\r\n\r\nThe rest is a joy.\r\n\r\nSiobhán"},
    {SampleFolder::Sent, 8, u"Re: Proofs, and a missing comma",
     u"Here it is: ,\r\n\r\nIt was hiding on page 16, between two words that had no need of it."},
    {SampleFolder::Inbox, 11, u"Your rainfall numbers",
     u"I ran your weather diary through the usual tests. Three things:\r\n\r\n"
     u"1. March is not significantly wetter than February; it only feels so.\r\n"
     u"2. The gauge was certainly full of leaves on 12 October.\r\n"
     u"3. 41.5 degrees in January is a typing mistake, or you should move.\r\n\r\nPriya"},
    {SampleFolder::Sent, 11, u"Re: Your rainfall numbers",
     u"It was 4.15. The leaves I admit.\r\n\r\nThank you!"},
    {SampleFolder::Inbox, 12, u"Simit tarifi",
     u"Merhaba,\r\n\r\nisteğin üzerine tarif ektedir: yarım kilo un, bir paket maya, pekmez ve bol susam. "
     u"Fırın çok sıcak olmalı. Sabırlı ol, gerisi kolay.\r\n\r\nÇağla"},
    {SampleFolder::Inbox, 15, u"The ridge track",
     u"Kia ora,\r\n\r\nthe hut is booked for two nights. Bring wool, not cotton, and tell someone where you "
     u"are "
     u"going who will notice when you are not back.\r\n\r\nThe river was low this morning and clear as gin."},
    {SampleFolder::Inbox, 19, u"Ice",
     u"The stake at 1,140 m has melted out again. Down 2.3 m since last year. I send you the numbers, since "
     u"you "
     u"like numbers, and a picture of the hut, since everybody likes the hut.\r\n\r\nKári"},
    {SampleFolder::Inbox, 22, u"Reminder of your appointment",
     u"This is to remind you of your appointment next week. Please be so kind as to be on time; the doctor "
     u"always is."},
    {SampleFolder::Inbox, 23, u"Sheet 12",
     u"The soundings for Lilla Viken have arrived at last, in fathoms, in pencil, on the back of a menu. I "
     u"have "
     u"converted them. The herring was 4 fathoms, apparently.\r\n\r\nCan you check the contour by the "
     u"lighthouse? 58° 14′ N, 11° 27′ E.\r\n\r\nRuth"},
    {SampleFolder::Sent, 23, u"Re: Sheet 12",
     u"Contour checked: move it 40 m to the east, otherwise the lighthouse stands in the sea, which it "
     u"would resent."},
    {SampleFolder::Inbox, 24, u"The violin",
     u"A hegedű elkészült. The crack is closed and nobody will hear it but you, and you will stop listening "
     u"for "
     u"it in a week. Play it a little every day; it has been lonely.\r\n\r\nSándor"},
    {SampleFolder::Inbox, 25, u"新书到了",
     u"您好：\r\n\r\n您预订的海图历史已经到店，请有空时来取。周末我们有一场小小的读书会，"
     u"欢迎参加，茶水免费。\r\n\r\n雲帆書店　王小雨"},
    {SampleFolder::Inbox, 28, u"Sirop",
     u"Les deux boîtes sont parties ce matin. L'année a été bonne : nuits froides, journées douces. "
     u"Gardez-en "
     u"un peu pour les crêpes.\r\n\r\nAmélie"},
    {SampleFolder::Inbox, 31, u"In the matter of the ladder",
     u"Dear neighbour,\r\n\r\nwithout prejudice, and having made all reasonable enquiries of my daughters, I "
     u"must inform you that the ladder in question has been in my shed since April. It may be collected at "
     u"any hour.\r\n\r\nI remain, etc.,\r\nT. Quillfeather"},
    {SampleFolder::Sent, 31, u"Re: In the matter of the ladder",
     u"All charges are dropped. Come for tea and bring the ladder."},
    {SampleFolder::Sent, 5, u"Rozkład jazdy",
     u"Cześć Łukasz,\r\n\r\nis the timetable for the mountain line out yet? I would like to see the viaduct "
     u"with snow on it, and I would rather not walk there again."},
    {SampleFolder::Sent, 28, u"Two tins, amber",
     u"Chère Amélie,\r\n\r\ndeux boîtes, s'il vous plaît, comme l'an dernier. And a third if the bears "
     u"have left one."},
    {SampleFolder::Drafts, 20, u"About the blue tiles",
     u"Dear Beatriz,\r\n\r\nI have measured the wall three times and got three widths. Before I order the "
     u"tiles, could you tell me whether"},
    {SampleFolder::Drafts, 17, u"", u"연은 잘 날고 있어요. 다만 나무가"},
    {SampleFolder::Drafts, 9, u"Vendimia",
     u"Querido Tomás:\r\n\r\ncuenta conmigo para la vendimia. Llego el viernes en el tren de las"},
};
