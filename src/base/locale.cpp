#include "base/locale.h"

namespace base {

const Locale& Locale::spanish() {
  static const Locale locale = {
      ",",
      ".",
      "€",
      true,
      DateOrder::DayMonthYear,
      "dd/MM/yyyy",
      "dddd, d \"de\" mmmm \"de\" yyyy",
      "H:mm:ss",
      "/",
      ":",
      "a. m.",
      "p. m.",
      {"enero", "febrero", "marzo", "abril", "mayo", "junio", "julio", "agosto", "septiembre", "octubre",
       "noviembre", "diciembre"},
      {"ene", "feb", "mar", "abr", "may", "jun", "jul", "ago", "sep", "oct", "nov", "dic"},
      {"domingo", "lunes", "martes", "miércoles", "jueves", "viernes", "sábado"},
      {"dom", "lun", "mar", "mié", "jue", "vie", "sáb"},
      "Verdadero",
      "Falso",
      "Sí",
      "No",
      "Activado",
      "Desactivado"};
  return locale;
}

const Locale& Locale::english() {
  static const Locale locale = {
      ".",
      ",",
      "$",
      false,
      DateOrder::MonthDayYear,
      "M/d/yyyy",
      "dddd, mmmm dd, yyyy",
      "h:mm:ss AM/PM",
      "/",
      ":",
      "AM",
      "PM",
      {"January", "February", "March", "April", "May", "June", "July", "August", "September", "October",
       "November", "December"},
      {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"},
      {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"},
      {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"},
      "True",
      "False",
      "Yes",
      "No",
      "On",
      "Off"};
  return locale;
}

}  // namespace base
