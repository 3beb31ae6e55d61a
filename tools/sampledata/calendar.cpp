#include "tools/sampledata/calendar.h"

#include <string>

#include "tools/sampledata/people.h"
#include "tools/sampledata/sampledatabases.h"
#include "tools/sampledata/sampletable.h"
#include "tools/sampledata/sampletime.h"

namespace {

constexpr DWORD kAppointmentsType = 26;
constexpr DWORD kTasksType = 28;
constexpr int kPastAppointments = 220;

constexpr CEPROPID kSubject = PropertyId(0x0037, CEVT_LPWSTR);
constexpr CEPROPID kPlace = PropertyId(0x4208, CEVT_LPWSTR);
constexpr CEPROPID kStart = PropertyId(0x420D, CEVT_FILETIME);
constexpr CEPROPID kMinutes = PropertyId(0x4213, CEVT_I4);
constexpr CEPROPID kReminderMinutes = PropertyId(0x4501, CEVT_UI2);
constexpr CEPROPID kAllDay = PropertyId(0x4215, CEVT_BOOL);
constexpr CEPROPID kText = PropertyId(0x4017, CEVT_LPWSTR);

constexpr CEPROPID kDue = PropertyId(0x4105, CEVT_FILETIME);
constexpr CEPROPID kDone = PropertyId(0x411C, CEVT_BOOL);
constexpr CEPROPID kDoneAt = PropertyId(0x410F, CEVT_FILETIME);
constexpr CEPROPID kPriority = PropertyId(0x0026, CEVT_I2);
constexpr CEPROPID kProgress = PropertyId(0x4102, CEVT_R8);

void AddAppointment(SampleTable& table, const SampleAppointment& appointment, const FILETIME& start,
                    const std::u16string& subject) {
    SampleRecord record;
    record.Text(kSubject, subject).Text(kPlace, appointment.place).Time(kStart, start);
    if (appointment.minutes)
        record.Number(kMinutes, appointment.minutes);
    else
        record.Number(kAllDay, TRUE);
    if (appointment.reminder)
        record.Number(kReminderMinutes, appointment.reminder);
    record.Text(kText, appointment.text);
    table.Add(record);
}

// A subject that ends in a blank names whom it is with.
std::u16string SubjectOf(const SampleAppointment& appointment, const SamplePerson& person) {
    std::u16string subject = appointment.subject;
    return subject.ends_with(u' ') ? subject + person.firstName : subject;
}

bool MakeAppointments() {
    SampleTable table(u"Appointments Database", kAppointmentsType, {{kStart, 0}});
    Chance chance(26);
    int day = 6;
    for (int i = 0; i < kPastAppointments; ++i) {
        day += chance.Between(1, 9);
        const SampleAppointment& appointment = chance.Pick(kAppointments);
        const int hour = appointment.minutes ? appointment.hour + chance.Between(0, 2) : 0;
        const int minute = appointment.minutes && chance.OneIn(3) ? 30 : 0;
        AddAppointment(table, appointment, Moment(kFirstSampleYear, 1, day, hour, minute),
                       SubjectOf(appointment, chance.Pick(kPeople)));
    }
    for (int days = -3; days < 25; days += chance.Between(1, 3)) {
        const SampleAppointment& appointment = chance.Pick(kAppointments);
        AddAppointment(table, appointment, MomentFromToday(days, appointment.hour),
                       SubjectOf(appointment, chance.Pick(kPeople)));
    }
    return table.Succeeded();
}

bool MakeTasks() {
    SampleTable table(u"Tasks Database", kTasksType,
                      {{kDue, CEDB_SORT_UNKNOWNFIRST}, {kPriority, CEDB_SORT_DESCENDING}});
    Chance chance(28);
    int day = 20;
    for (const SampleTask& task : kTasks) {
        day += chance.Between(5, 40);
        SampleRecord record;
        record.Text(kSubject, task.subject).Number(kPriority, task.priority);
        if (task.hasDue) {
            record.Time(kDue, task.done ? Moment(kFirstSampleYear, 1, day)
                                        : MomentFromToday(chance.Between(-2, 40)));
        }
        record.Number(kDone, task.done);
        if (task.done)
            record.Time(kDoneAt, Moment(kFirstSampleYear, 1, day + chance.Between(-4, 11), 17, 20));
        else if (chance.OneIn(2))
            record.Real(kProgress, chance.Between(1, 19) / 20.0);
        record.Text(kText, task.text);
        table.Add(record);
    }
    return table.Succeeded();
}

} // namespace

bool MakeCalendar() {
    return MakeAppointments() && MakeTasks();
}
