<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name></name>
    <message id="sidemenu_search">
        <source>sidemenu_search</source>
        <translation>Search</translation>
    </message>
    <message id="sidemenu_map">
        <source>sidemenu_map</source>
        <translation>Map</translation>
    </message>
    <message id="sidemenu_myplaces">
        <source>sidemenu_myplaces</source>
        <translation>My places</translation>
    </message>
    <message id="sidemenu_notifications">
        <source>sidemenu_notifications</source>
        <translation>Notifications</translation>
    </message>
    <message id="sidemenu_info">
        <source>sidemenu_info</source>
        <translation>About</translation>
    </message>
    <message id="sidemenu_settings">
        <source>sidemenu_settings</source>
        <translation>Settings</translation>
    </message>
    <message id="notifications_receive_more_info">
        <source>notifications_receive_more_info</source>
        <translation>Get news by SMS</translation>
    </message>
    <message id="search_discover">
        <source>search_discover</source>
        <translation>Discover</translation>
    </message>
    <message id="search_places">
        <source>search_places</source>
        <translation>Places</translation>
    </message>
    <message id="search_offers">
        <source>search_offers</source>
        <translation>Offers</translation>
    </message>
    <message id="discover_promo_badge">
        <source>discover_promo_badge</source>
        <translation>FEATURED</translation>
    </message>
    <message id="discover_ad_badge">
        <source>discover_ad_badge</source>
        <translation>AD</translation>
    </message>
    <message id="adv_email_subject">
        <source>adv_email_subject</source>
        <translation>Enquiry from Velmora</translation>
    </message>
    <message id="offers_title">
        <source>offers_title</source>
        <translation>Offers</translation>
    </message>
    <message id="filters_title">
        <source>filters_title</source>
        <translation>Filters</translation>
    </message>
    <message id="filters_clear_all">
        <source>filters_clear_all</source>
        <translation>Clear all</translation>
    </message>
    <message id="filters_filter_action">
        <source>filters_filter_action</source>
        <translation>Show places</translation>
    </message>
    <message id="filters_row_all">
        <source>filters_row_all</source>
        <translation>All</translation>
    </message>
    <message id="filters_price_rank_upto_7">
        <source>filters_price_rank_upto_7</source>
        <translation>Up to $7</translation>
    </message>
    <message id="filters_price_rank_7_to_14">
        <source>filters_price_rank_7_to_14</source>
        <translation>$7 to $14</translation>
    </message>
    <message id="filters_price_rank_14_to_21">
        <source>filters_price_rank_14_to_21</source>
        <translation>$14 to $21</translation>
    </message>
    <message id="filters_price_rank_21_to_29">
        <source>filters_price_rank_21_to_29</source>
        <translation>$21 to $29</translation>
    </message>
    <message id="filters_price_rank_over_29">
        <source>filters_price_rank_over_29</source>
        <translation>Over $29</translation>
    </message>
    <message id="provinces_number_of_places">
        <source>provinces_number_of_places</source>
        <translation>{N} places</translation>
    </message>
    <message id="lugar_info_header">
        <source>lugar_info_header</source>
        <translation>INFORMATION</translation>
    </message>
    <message id="lugar_place_out_of_service">
        <source>lugar_place_out_of_service</source>
        <translation>Temporarily closed</translation>
    </message>
    <message id="lugar_place_out_of_service_reason">
        <source>lugar_place_out_of_service_reason</source>
        <translation>Reason: {REASON}</translation>
    </message>
    <message id="lugar_place_out_of_service_reason_unknown">
        <source>lugar_place_out_of_service_reason_unknown</source>
        <translation>We don't know why, or for how long.</translation>
    </message>
    <message id="lugar_address_subheader">
        <source>lugar_address_subheader</source>
        <translation>ADDRESS</translation>
    </message>
    <message id="lugar_avg_price_subheader">
        <source>lugar_avg_price_subheader</source>
        <translation>AVERAGE PRICE</translation>
    </message>
    <message id="lugar_cuisines_subheader">
        <source>lugar_cuisines_subheader</source>
        <translation>CUISINE</translation>
    </message>
    <message id="lugar_hours_subheader">
        <source>lugar_hours_subheader</source>
        <translation>OPENING HOURS</translation>
    </message>
    <message id="lugar_make_a_call">
        <source>lugar_make_a_call</source>
        <translation>Call</translation>
    </message>
    <message id="lugar_no_phone_numbers">
        <source>lugar_no_phone_numbers</source>
        <translation>No phone number</translation>
    </message>
    <message id="lugar_gallery">
        <source>lugar_gallery</source>
        <translation>Photos</translation>
    </message>
    <message id="lugar_offers">
        <source>lugar_offers</source>
        <translation>Offers</translation>
    </message>
    <message id="lugar_menu">
        <source>lugar_menu</source>
        <translation>Menu</translation>
    </message>
    <message id="lugar_moreinfo">
        <source>lugar_moreinfo</source>
        <translation>More information</translation>
    </message>
    <message id="lugar_notes_on_RESTAURANT_NAME">
        <source>lugar_notes_on_RESTAURANT_NAME</source>
        <translation>Your notes on {RESTAURANT_NAME}</translation>
    </message>
    <message id="lugar_add_to_my_places">
        <source>lugar_add_to_my_places</source>
        <translation>Save to my places</translation>
    </message>
    <message id="lugar_cameraicon_number_of_pictures">
        <source>lugar_cameraicon_number_of_pictures</source>
        <translation>&lt;fotos-icon&gt;{I}&lt;/fotos-icon&gt;&lt;fotos&gt; {N} PHOTOS&lt;/fotos&gt;</translation>
    </message>
    <message id="map_title">
        <source>map_title</source>
        <translation>Map</translation>
    </message>
    <message id="menu_title">
        <source>menu_title</source>
        <translation>Menu</translation>
    </message>
    <message id="moreinfo_title">
        <source>moreinfo_title</source>
        <translation>More information</translation>
    </message>
    <message id="moreinfo_rest_group_header">
        <source>moreinfo_rest_group_header</source>
        <translation>GROUP</translation>
    </message>
    <message id="moreinfo_service_types_header">
        <source>moreinfo_service_types_header</source>
        <translation>SERVICES</translation>
    </message>
    <message id="moreinfo_place_options_header">
        <source>moreinfo_place_options_header</source>
        <translation>FACILITIES</translation>
    </message>
    <message id="moreinfo_payment_options_header">
        <source>moreinfo_payment_options_header</source>
        <translation>PAYMENT</translation>
    </message>
    <message id="moreinfo_website_header">
        <source>moreinfo_website_header</source>
        <translation>WEBSITE</translation>
    </message>
    <message id="moreinfo_email_header">
        <source>moreinfo_email_header</source>
        <translation>EMAIL</translation>
    </message>
    <message id="phone_copy">
        <source>phone_copy</source>
        <translation>Copy</translation>
    </message>
    <message id="phones_cancel">
        <source>phones_cancel</source>
        <translation>Cancel</translation>
    </message>
    <message id="save_myplaces_save_to_my_places">
        <source>save_myplaces_save_to_my_places</source>
        <translation>Save to my places</translation>
    </message>
    <message id="save_myplaces_favorite">
        <source>save_myplaces_favorite</source>
        <translation>Favourite</translation>
    </message>
    <message id="save_myplaces_visited">
        <source>save_myplaces_visited</source>
        <translation>Visited</translation>
    </message>
    <message id="save_myplaces_tovisit">
        <source>save_myplaces_tovisit</source>
        <translation>To visit</translation>
    </message>
    <message id="save_myplaces_cancel">
        <source>save_myplaces_cancel</source>
        <translation>Cancel</translation>
    </message>
    <message id="save_myplaces_done">
        <source>save_myplaces_done</source>
        <translation>Save</translation>
    </message>
    <message id="myplaces_title">
        <source>myplaces_title</source>
        <translation>My places</translation>
    </message>
    <message id="myplaces_explore">
        <source>myplaces_explore</source>
        <translation>Explore places</translation>
    </message>
    <message id="myplaces_favorites">
        <source>myplaces_favorites</source>
        <translation>Favourites</translation>
    </message>
    <message id="myplaces_visited">
        <source>myplaces_visited</source>
        <translation>Visited</translation>
    </message>
    <message id="myplaces_tovisit">
        <source>myplaces_tovisit</source>
        <translation>To visit</translation>
    </message>
    <message id="myplaces_save_favorites_by_tapping_ICON_myplaces">
        <source>myplaces_save_favorites_by_tapping_ICON_myplaces</source>
        <translation>&lt;msg&gt;No favourites yet. Tap &lt;msg-icon&gt;{I}&lt;/msg-icon&gt; on a place's card and mark it as a favourite to keep it close at hand.&lt;/msg&gt;</translation>
    </message>
    <message id="myplaces_save_visited_by_tapping_ICON_myplaces">
        <source>myplaces_save_visited_by_tapping_ICON_myplaces</source>
        <translation>&lt;msg&gt;The places you have been to will show here. Tap &lt;msg-icon&gt;{I}&lt;/msg-icon&gt; on a place's card and mark it as visited.&lt;/msg&gt;</translation>
    </message>
    <message id="myplaces_save_to_visit_by_tapping_ICON_myplaces">
        <source>myplaces_save_to_visit_by_tapping_ICON_myplaces</source>
        <translation>&lt;msg&gt;Somewhere you'd like to try? Tap &lt;msg-icon&gt;{I}&lt;/msg-icon&gt; on its card and mark it as to visit.&lt;/msg&gt;</translation>
    </message>
    <message id="settings_title">
        <source>settings_title</source>
        <translation>Settings</translation>
    </message>
    <message id="settings_header_language">
        <source>settings_header_language</source>
        <translation>LANGUAGE</translation>
    </message>
    <message id="settings_header_notifications">
        <source>settings_header_notifications</source>
        <translation>NOTIFICATIONS</translation>
    </message>
    <message id="settings_receive_notifications">
        <source>settings_receive_notifications</source>
        <translation>News by SMS</translation>
    </message>
    <message id="settings_subscribed_yes">
        <source>settings_subscribed_yes</source>
        <translation>On</translation>
    </message>
    <message id="settings_subscribed_no">
        <source>settings_subscribed_no</source>
        <translation>Off</translation>
    </message>
    <message id="settings_header_places_out_of_service">
        <source>settings_header_places_out_of_service</source>
        <translation>CLOSED PLACES</translation>
    </message>
    <message id="settings_show_closed_places">
        <source>settings_show_closed_places</source>
        <translation>Show closed places</translation>
    </message>
    <message id="settings_analytics">
        <source>settings_analytics</source>
        <translation>USAGE STATISTICS</translation>
    </message>
    <message id="settings_enable_analytics">
        <source>settings_enable_analytics</source>
        <translation>Send anonymous statistics</translation>
    </message>
    <message id="info_header_version">
        <source>info_header_version</source>
        <translation>VERSION</translation>
    </message>
    <message id="info_version">
        <source>info_version</source>
        <translation>Catalogue</translation>
    </message>
    <message id="info_db_outdated">
        <source>info_db_outdated</source>
        <translation>an update is available</translation>
    </message>
    <message id="info_db_up_to_date">
        <source>info_db_up_to_date</source>
        <translation>up to date</translation>
    </message>
    <message id="info_updates_key_broken">
        <source>info_updates_key_broken</source>
        <translation>No updates will be installed: a trusted signing key is damaged. Reinstall the app or tell support.</translation>
    </message>
    <message id="info_updates_no_key">
        <source>info_updates_no_key</source>
        <translation>No updates will be installed: this installation trusts no signing key.</translation>
    </message>
    <message id="info_update_db">
        <source>info_update_db</source>
        <translation>Update</translation>
    </message>
    <message id="info_updating">
        <source>info_updating</source>
        <translation>Updating the catalogue</translation>
    </message>
    <message id="info_cancel_update">
        <source>info_cancel_update</source>
        <translation>Cancel</translation>
    </message>
    <message id="info_applying_patches">
        <source>info_applying_patches</source>
        <translation>Applying the update</translation>
    </message>
    <message id="info_header_contact">
        <source>info_header_contact</source>
        <translation>CONTACT</translation>
    </message>
    <message id="info_subheader_website">
        <source>info_subheader_website</source>
        <translation>Our website</translation>
    </message>
    <message id="info_subheader_email">
        <source>info_subheader_email</source>
        <translation>Write to us</translation>
    </message>
    <message id="info_subheader_social_networks">
        <source>info_subheader_social_networks</source>
        <translation>Follow us</translation>
    </message>
    <message id="info_rate_app">
        <source>info_rate_app</source>
        <translation>Rate Velmora</translation>
    </message>
    <message id="info_shake_app_to_get_fortunes">
        <source>info_shake_app_to_get_fortunes</source>
        <translation>Shake your device for a fortune: a little wisdom for the table.</translation>
    </message>
    <message id="careful_with_the_shaking">
        <source>careful_with_the_shaking</source>
        <translation>Careful! Keep shaking your {DEVICE} like that and it will end up on the floor. Take a break.</translation>
    </message>
    <message id="subscribe_intro_text">
        <source>subscribe_intro_text</source>
        <translation>Want to hear about new places and offers in your province? We'll let you know by SMS.</translation>
    </message>
    <message id="subscribe_intro_not_now">
        <source>subscribe_intro_not_now</source>
        <translation>Not now</translation>
    </message>
    <message id="subscribe_intro_yes_sure">
        <source>subscribe_intro_yes_sure</source>
        <translation>Yes, please!</translation>
    </message>
    <message id="notifications_provinces_select_provinces">
        <source>notifications_provinces_select_provinces</source>
        <translation>Choose the provinces you care about</translation>
    </message>
    <message id="notifications_provinces_select_all">
        <source>notifications_provinces_select_all</source>
        <translation>All of them</translation>
    </message>
    <message id="notifications_provinces_finish">
        <source>notifications_provinces_finish</source>
        <translation>Done</translation>
    </message>
    <message id="notifications_provinces_will_send_an_sms">
        <source>notifications_provinces_will_send_an_sms</source>
        <translation>We'll send one SMS to sign you up</translation>
    </message>
    <message id="subscribe_sms_body_intro">
        <source>subscribe_sms_body_intro</source>
        <translation>Join</translation>
    </message>
    <message id="wt_help_us_find_the_database">
        <source>wt_help_us_find_the_database</source>
        <translation>Velmora works without a connection, from a catalogue of every restaurant kept on this device. Let's get it here.</translation>
    </message>
    <message id="wt_action_download">
        <source>wt_action_download</source>
        <translation>Download the catalogue</translation>
    </message>
    <message id="wt_action_copy_with_itunes">
        <source>wt_action_copy_with_itunes</source>
        <translation>I have a catalogue file</translation>
    </message>
    <message id="open_itunes_and_connect_your_DEVICE">
        <source>open_itunes_and_connect_your_DEVICE</source>
        <translation>Find the catalogue file you were given: its name ends in &lt;u&gt;.vmr&lt;/u&gt;.</translation>
    </message>
    <message id="go_to_applications">
        <source>go_to_applications</source>
        <translation>Drop it onto this window, or choose it with &lt;u&gt;Open catalogue…&lt;/u&gt; below.</translation>
    </message>
    <message id="in_shared_files_click_the_app_velmora">
        <source>in_shared_files_click_the_app_velmora</source>
        <translation>Or copy it yourself into this folder:
&lt;c&gt;{DOCUMENTS}&lt;/c&gt;
On a phone, use the system's file sharing to put it in Velmora's Documents.</translation>
    </message>
    <message id="add_the_file_to_the_documents_panel">
        <source>add_the_file_to_the_documents_panel</source>
        <translation>Velmora notices the file within a second and checks it; then tap &lt;u&gt;Start&lt;/u&gt;.</translation>
    </message>
    <message id="itunes_cancel">
        <source>itunes_cancel</source>
        <translation>Back</translation>
    </message>
    <message id="wt_start">
        <source>wt_start</source>
        <translation>Start</translation>
    </message>
    <message id="downloading_database">
        <source>downloading_database</source>
        <translation>Downloading the catalogue</translation>
    </message>
    <message id="download_cancel">
        <source>download_cancel</source>
        <translation>Cancel</translation>
    </message>
    <message id="lugares_fewer_filters">
        <source>lugares_fewer_filters</source>
        <translation>No places match these filters. Try fewer.</translation>
    </message>
    <message id="cli_usage">
        <source>cli_usage</source>
        <translation>usage: velmora [options] [velmora://LINK]

  --home DIR          keep the catalogue, settings and caches under DIR
                      (default: VELMORA_HOME, else the user's standard folders)
  --open LINK         open a velmora:// link once the guide is shown
  --self-test         show the first screen, report start-up time and memory, quit
  --screenshot FILE   save the first frame of the screen reached as PNG, quit
  --dump-ui           print the visible accessible items as JSON, quit
  --check-updates     ask the Internet and the local network for a newer catalogue,
                      print what answered as JSON, quit (no window)
  --update-now        fetch and install a newer catalogue (a patch, else the whole
                      file), printing progress and a JSON result, quit (no window)
  --update-url URL    where the update information is (default: the setting update-url)
  --analytics-url URL where usage reports go, when the user allows them (default: the
                      setting analytics-url)
  --position-log FILE replay the user's position from an NMEA log (instead of the
                      device's own source)
  --version           print the version and quit
  -h, --help          print this help and quit

links: velmora://place/ID, velmora://province/ID, velmora://search?q=TEXT,
       velmora://map[?place=ID], velmora://myplaces, velmora://settings,
       velmora://info, velmora://offers, velmora://discover</translation>
    </message>
    <message id="a11y_menu">
        <source>a11y_menu</source>
        <translation>Menu</translation>
    </message>
    <message id="a11y_search">
        <source>a11y_search</source>
        <translation>Search</translation>
    </message>
    <message id="a11y_cancel">
        <source>a11y_cancel</source>
        <translation>Back</translation>
    </message>
    <message id="a11y_back">
        <source>a11y_back</source>
        <translation>Back</translation>
    </message>
    <message id="a11y_filter">
        <source>a11y_filter</source>
        <translation>Filters</translation>
    </message>
    <message id="a11y_call">
        <source>a11y_call</source>
        <translation>Call</translation>
    </message>
    <message id="a11y_clear_search">
        <source>a11y_clear_search</source>
        <translation>Clear search</translation>
    </message>
    <message id="a11y_province_button">
        <source>a11y_province_button</source>
        <translation>Province: %1, choose another</translation>
    </message>
    <message id="a11y_place_list">
        <source>a11y_place_list</source>
        <translation>Places</translation>
    </message>
    <message id="a11y_letter_index">
        <source>a11y_letter_index</source>
        <translation>Letter index</translation>
    </message>
    <message id="a11y_letter">
        <source>a11y_letter</source>
        <translation>Letter %1</translation>
    </message>
    <message id="a11y_tab">
        <source>a11y_tab</source>
        <translation>%1 tab</translation>
    </message>
    <message id="a11y_close">
        <source>a11y_close</source>
        <translation>Close</translation>
    </message>
    <message id="a11y_search_field">
        <source>a11y_search_field</source>
        <translation>Search places</translation>
    </message>
    <message id="a11y_menu_list">
        <source>a11y_menu_list</source>
        <translation>Main menu</translation>
    </message>
    <message id="a11y_more_info">
        <source>a11y_more_info</source>
        <translation>More information</translation>
    </message>
    <message id="a11y_dim">
        <source>a11y_dim</source>
        <translation>Close the sheet</translation>
    </message>
    <message id="a11y_drawer">
        <source>a11y_drawer</source>
        <translation>Close the menu</translation>
    </message>
    <message id="a11y_phone_numbers">
        <source>a11y_phone_numbers</source>
        <translation>Phone numbers</translation>
    </message>
    <message id="a11y_place_row">
        <source>a11y_place_row</source>
        <translation>%1. %2. %3</translation>
    </message>
    <message id="a11y_delete">
        <source>a11y_delete</source>
        <translation>Delete</translation>
    </message>
    <message id="a11y_reserve">
        <source>a11y_reserve</source>
        <translation>Reserve</translation>
    </message>
    <message id="a11y_out_of_service">
        <source>a11y_out_of_service</source>
        <translation>Out of service</translation>
    </message>
    <message id="a11y_province_list">
        <source>a11y_province_list</source>
        <translation>Provinces</translation>
    </message>
    <message id="filters_page_location">
        <source>filters_page_location</source>
        <translation>Area</translation>
    </message>
    <message id="filters_page_cuisines">
        <source>filters_page_cuisines</source>
        <translation>Cuisine</translation>
    </message>
    <message id="filters_page_price">
        <source>filters_page_price</source>
        <translation>Price</translation>
    </message>
    <message id="offers_none_today">
        <source>offers_none_today</source>
        <translation>No offers today in this province.</translation>
    </message>
    <message id="lugar_reserve_table">
        <source>lugar_reserve_table</source>
        <translation>Book a table</translation>
    </message>
    <message id="lugar_shared_copied">
        <source>lugar_shared_copied</source>
        <translation>Name and address copied, ready to paste</translation>
    </message>
    <message id="a11y_share">
        <source>a11y_share</source>
        <translation>Share</translation>
    </message>
    <message id="a11y_place_picture">
        <source>a11y_place_picture</source>
        <translation>The place's picture</translation>
    </message>
    <message id="a11y_edit">
        <source>a11y_edit</source>
        <translation>Edit</translation>
    </message>
    <message id="myplaces_edit">
        <source>myplaces_edit</source>
        <translation>Edit</translation>
    </message>
    <message id="myplaces_done">
        <source>myplaces_done</source>
        <translation>Done</translation>
    </message>
    <message id="a11y_picture_unreadable">
        <source>a11y_picture_unreadable</source>
        <translation>This picture can't be shown</translation>
    </message>
    <message id="gallery_copied">
        <source>gallery_copied</source>
        <translation>Picture and caption copied, ready to paste</translation>
    </message>
    <message id="wt_checking_database">
        <source>wt_checking_database</source>
        <translation>Checking the catalogue…</translation>
    </message>
    <message id="wt_loading_failed">
        <source>wt_loading_failed</source>
        <translation>the catalogue could not be loaded</translation>
    </message>
    <message id="wt_retry">
        <source>wt_retry</source>
        <translation>Try again</translation>
    </message>
    <message id="wt_open_catalogue">
        <source>wt_open_catalogue</source>
        <translation>Open catalogue…</translation>
    </message>
    <message id="wt_catalogue_files">
        <source>wt_catalogue_files</source>
        <translation>Velmora catalogues</translation>
    </message>
    <message id="wt_catalogue_downloaded">
        <source>wt_catalogue_downloaded</source>
        <translation>Catalogue downloaded</translation>
    </message>
    <message id="wt_catalogue_found">
        <source>wt_catalogue_found</source>
        <translation>Catalogue found</translation>
    </message>
    <message id="wt_import_not_a_catalogue">
        <source>wt_import_not_a_catalogue</source>
        <translation>That file is not a Velmora catalogue.</translation>
    </message>
    <message id="wt_import_other_key">
        <source>wt_import_other_key</source>
        <translation>That catalogue can't be read: it was made for another app, or it is damaged.</translation>
    </message>
    <message id="wt_chooser_missing">
        <source>wt_chooser_missing</source>
        <translation>The file chooser can't open: part of the app is missing. Copy the catalogue into the folder above, or drop it here.</translation>
    </message>
    <message id="wt_copied_file_unusable">
        <source>wt_copied_file_unusable</source>
        <translation>%1 can't be used: it is damaged or isn't a catalogue of this guide. The file stays where it is; copy in or choose another one.</translation>
    </message>
    <message id="wt_import_damaged">
        <source>wt_import_damaged</source>
        <translation>That catalogue is damaged. Ask for a new copy.</translation>
    </message>
    <message id="wt_import_no_date">
        <source>wt_import_no_date</source>
        <translation>That catalogue has no date, so Velmora can't use it.</translation>
    </message>
    <message id="wt_import_not_newer">
        <source>wt_import_not_newer</source>
        <translation>Velmora already has this catalogue or a newer one.</translation>
    </message>
    <message id="wt_import_copy_failed">
        <source>wt_import_copy_failed</source>
        <translation>The catalogue could not be copied. Is the disk full?</translation>
    </message>
    <message id="update_error">
        <source>update_error</source>
        <translation>Error: %1</translation>
    </message>
    <message id="info_social_facebook">
        <source>info_social_facebook</source>
        <translation>Facebook</translation>
    </message>
    <message id="info_social_twitter">
        <source>info_social_twitter</source>
        <translation>Twitter</translation>
    </message>
    <message id="info_social_googleplus">
        <source>info_social_googleplus</source>
        <translation>Google+</translation>
    </message>
    <message id="a11y_location_off">
        <source>a11y_location_off</source>
        <translation>Show my location</translation>
    </message>
    <message id="a11y_location_waiting">
        <source>a11y_location_waiting</source>
        <translation>Finding your location; tap to stop</translation>
    </message>
    <message id="a11y_location_centered">
        <source>a11y_location_centered</source>
        <translation>Stop showing my location</translation>
    </message>
    <message id="a11y_location_not_centered">
        <source>a11y_location_not_centered</source>
        <translation>Centre the map on me</translation>
    </message>
    <message id="a11y_map_open_card">
        <source>a11y_map_open_card</source>
        <translation>Open the place's card</translation>
    </message>
    <message id="a11y_map">
        <source>a11y_map</source>
        <translation>Map of the places</translation>
    </message>
    <message id="a11y_map_loading">
        <source>a11y_map_loading</source>
        <translation>Loading the map</translation>
    </message>
    <message id="settings_dev_header">
        <source>settings_dev_header</source>
        <translation>DEVELOPER TOOLS</translation>
    </message>
    <message id="settings_dev_notifications">
        <source>settings_dev_notifications</source>
        <translation>Notifications (WIP)</translation>
    </message>
    <message id="settings_dev_opinions">
        <source>settings_dev_opinions</source>
        <translation>User opinions (WIP)</translation>
    </message>
    <message id="settings_dev_update_always">
        <source>settings_dev_update_always</source>
        <translation>Always enable DB updates</translation>
    </message>
    <message id="settings_dev_keep_old_dbs">
        <source>settings_dev_keep_old_dbs</source>
        <translation>Keep all DBs, even those which aren't the newest</translation>
    </message>
    <message id="settings_dev_allow_unsigned_updates">
        <source>settings_dev_allow_unsigned_updates</source>
        <translation>Install unsigned updates when no key is trusted</translation>
    </message>
    <message id="settings_dev_enable_subscribe">
        <source>settings_dev_enable_subscribe</source>
        <translation>Force enable subscriptions</translation>
    </message>
    <message id="settings_dev_user_defaults">
        <source>settings_dev_user_defaults</source>
        <translation>User Defaults</translation>
    </message>
    <message id="settings_dev_build_fts">
        <source>settings_dev_build_fts</source>
        <translation>Build FTS Index</translation>
    </message>
    <message id="settings_dev_clear_cache">
        <source>settings_dev_clear_cache</source>
        <translation>Clear NSURL Cache</translation>
    </message>
    <message id="settings_dev_delete_database">
        <source>settings_dev_delete_database</source>
        <translation>Delete Database</translation>
    </message>
    <message id="settings_dev_unknown">
        <source>settings_dev_unknown</source>
        <translation>Unknown Command</translation>
    </message>
    <message id="settings_dev_delete_title">
        <source>settings_dev_delete_title</source>
        <translation>Delete Database</translation>
    </message>
    <message id="settings_dev_delete_message">
        <source>settings_dev_delete_message</source>
        <translation>Are you sure? Restart app afterwards.</translation>
    </message>
    <message id="settings_dev_delete">
        <source>settings_dev_delete</source>
        <translation>Delete</translation>
    </message>
    <message id="settings_dev_cancel">
        <source>settings_dev_cancel</source>
        <translation>Cancel</translation>
    </message>
    <message id="settings_locked">
        <source>settings_locked</source>
        <translation>Set by this installation</translation>
    </message>
    <message id="user_defaults_title">
        <source>user_defaults_title</source>
        <translation>User Defaults</translation>
    </message>
    <message id="user_defaults_edit">
        <source>user_defaults_edit</source>
        <translation>Edit</translation>
    </message>
    <message id="user_defaults_done">
        <source>user_defaults_done</source>
        <translation>Done</translation>
    </message>
    <message id="user_defaults_delete">
        <source>user_defaults_delete</source>
        <translation>Delete</translation>
    </message>
    <message id="settings_dev_shake">
        <source>settings_dev_shake</source>
        <translation>Shake for a fortune</translation>
    </message>
    <message id="device_phone">
        <source>device_phone</source>
        <translation>phone</translation>
    </message>
    <message id="device_computer">
        <source>device_computer</source>
        <translation>computer</translation>
    </message>
    <message id="settings_dev_reload">
        <source>settings_dev_reload</source>
        <translation>Reload Database</translation>
    </message>
</context>
</TS>
